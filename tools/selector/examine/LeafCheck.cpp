// SPDX-License-Identifier: MIT
// The rules that lines of selector lists are held to.
#include "LeafCheck.h"

#include "LeafType.h"

#include <QHash>

namespace {

Finding refused(const QString &text, const QString &problem)
{
    return {Finding::ValueRefused, QStringLiteral("\"%1\" %2").arg(text, problem)};
}

CheckedLine checkLine(const ListLine &line, int position, const SelectorUrlParts &parts,
                      const LeafLookup &lookup)
{
    CheckedLine checked{line, textFinding(parts), {}, {}};
    if (!checked.finding.isNone()) {
        return checked;
    }
    const FoundLeaf leaf = lookup(position, parts);
    checked.finding = leaf.finding;
    checked.properties = leaf.properties;
    if (checked.finding.isNone() && line.hasValue) {
        checked.finding = checkValue(leaf.properties, line.value, checked.value);
    }
    return checked;
}

} // namespace

Finding checkValue(const QJsonObject &properties, const QString &text, QVariant &value)
{
    const auto type = leafType(properties.value(QLatin1String("type")).toString());
    if (!type) {
        return refused(text, QStringLiteral("cannot be converted: the leaf's type is unknown"));
    }
    if (properties.value(QLatin1String("readOnly")).toBool()) {
        return {Finding::ReadOnly, QStringLiteral("the leaf is read-only")};
    }
    QString problem;
    QVariant converted;
    if (!valueFromText(*type, text, converted, problem)
        || !checkLimits(*type, properties, converted, problem)) {
        return refused(text, problem);
    }
    value = converted;
    return {};
}

QVector<CheckedLine> checkLines(const QVector<ListLine> &lines, const LeafLookup &lookup)
{
    QVector<CheckedLine> result;
    QHash<QString, int> firstLines;
    for (int i = 0; i < lines.size(); ++i) {
        const SelectorUrlParts parts = parseSelectorUrl(lines.at(i).url);
        CheckedLine checked = checkLine(lines.at(i), i, parts, lookup);
        if (checked.finding.isNone()) {
            // Names cannot contain a "/", so no two leaves share a key.
            const QString key = parts.source.toString() + QLatin1Char('/') + parts.path;
            const int first = firstLines.value(key);
            if (first == 0) {
                firstLines.insert(key, lines.at(i).number);
            } else {
                checked.finding = {Finding::Duplicate,
                                   QStringLiteral("line %1 names the same leaf").arg(first)};
            }
        }
        result.append(checked);
    }
    return result;
}
