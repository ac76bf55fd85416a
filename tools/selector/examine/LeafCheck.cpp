// SPDX-License-Identifier: MIT
// The rules that lines of selector lists are held to.
#include "LeafCheck.h"

#include "Diagnosis.h"
#include "LeafType.h"
#include "SelectorUrlHandler.h"

#include <QHash>
#include <QUrl>

namespace {

constexpr int partsBeforeLeaf = 3;

Finding refused(const QString &text, const QString &problem)
{
    return {Finding::ValueRefused, QStringLiteral("\"%1\" %2").arg(text, problem)};
}

// Names cannot contain a "/", so no two leaves share a key.
QString keyOf(const SelectorUrlHandler &url)
{
    return QStringLiteral("%1/%2/%3/%4")
        .arg(url.getModuleName(), url.getObjectName(), url.getInstance(), leafPathOf(url));
}

CheckedLine checkLine(const ListLine &line, int position, const LeafLookup &lookup)
{
    CheckedLine checked{line, {}, {}, {}};
    const SelectorUrlHandler url(line.url);
    checked.finding = Diagnosis::explainText(url);
    if (checked.finding.code != Finding::None) {
        return checked;
    }
    const FoundLeaf leaf = lookup(position, url);
    checked.finding = leaf.finding;
    checked.properties = leaf.properties;
    if (checked.finding.code == Finding::None && line.hasValue) {
        checked.finding = checkValue(leaf.properties, line.value, checked.value);
    }
    return checked;
}

} // namespace

QString leafPathOf(const SelectorUrlHandler &url)
{
    QString text = url.getUrl();
    text = text.left(text.indexOf(QLatin1Char('?')));
    text = text.mid(text.indexOf(QLatin1String("://")) + 3);
    QStringList names = text.split(QLatin1Char('/')).mid(partsBeforeLeaf);
    for (QString &name : names) {
        name = QUrl::fromPercentEncoding(name.toUtf8());
        if (name.contains(QLatin1Char('/'))) {
            return {};
        }
    }
    return names.join(QLatin1Char('/'));
}

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
        CheckedLine checked = checkLine(lines.at(i), i, lookup);
        if (checked.finding.code == Finding::None) {
            const QString key = keyOf(SelectorUrlHandler(lines.at(i).url));
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
