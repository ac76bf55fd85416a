// SPDX-License-Identifier: MIT
// Takes patterns apart and compares names with them.
#include "SelectorPattern.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "SelectorUrlParser.h"

#include <algorithm>

namespace {

constexpr int firstOfPath = 3;
const QLatin1Char star('*');

QString withoutScheme(const QString &text)
{
    const QString scheme = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
        + QStringLiteral("://");
    return text.startsWith(scheme) ? text.mid(scheme.size()) : text;
}

// By the parser of selector URLs, so that a name is the same in both: as an instance, which may hold
// "/" where it is encoded, or as a leaf.
bool decode(const QString &piece, bool isOfPath, QString &decoded)
{
    const SelectorUrlParts parts
        = parseSelectorUrl(isOfPath ? QStringLiteral("s://m/o//x") + piece
                                    : QStringLiteral("s://m/o/x%1/l").arg(piece));
    const QString name = isOfPath ? parts.path : parts.source.instance;
    if (!parts.valid || name.isNull() || parts.deactivated) {
        return false;
    }
    decoded = name.mid(1);
    return true;
}

bool parsePart(const QString &part, bool isOfPath, NamePattern &name)
{
    QStringList pieces = part.split(star);
    for (QString &piece : pieces) {
        if (!decode(piece, isOfPath, piece)) {
            return false;
        }
    }
    name = NamePattern(pieces);
    return true;
}

QString problemOf(const QStringList &parts, const QString &text)
{
    for (int i = 0; i < parts.size(); ++i) {
        if (parts.at(i).isEmpty() && i != firstOfPath - 1) {
            return QStringLiteral("\"%1\" has an empty part; expected MODULE/OBJECT/INSTANCE")
                .arg(text);
        }
        if (parts.at(i) == QLatin1String("**") && i < parts.size() - 1) {
            return QStringLiteral(
                       "\"%1\" has ** in its middle; it may only be the last part, and * stands "
                       "for one part")
                .arg(text);
        }
    }
    return {};
}

bool matchesName(const NamePattern &wanted, const QString &name)
{
    return wanted.matches(name);
}

} // namespace

bool NamePattern::matches(const QString &name) const
{
    if (isName()) {
        return name == pieces.constFirst();
    }
    const QString &first = pieces.constFirst();
    const QString &last = pieces.constLast();
    if (!name.startsWith(first) || !name.endsWith(last)
        || name.size() < first.size() + last.size()) {
        return false;
    }
    int from = first.size();
    const int end = name.size() - last.size();
    for (int i = 1; i < pieces.size() - 1; ++i) {
        const int at = name.indexOf(pieces.at(i), from);
        if (at < 0 || at + pieces.at(i).size() > end) {
            return false;
        }
        from = at + pieces.at(i).size();
    }
    return true;
}

int NamePattern::distanceTo(const QString &name) const
{
    QVector<int> row(name.size() + 1);
    for (int j = 0; j < row.size(); ++j) {
        row[j] = j;
    }
    for (int p = 0; p < pieces.size(); ++p) {
        if (p > 0) { // a star: the rest of the name costs nothing
            for (int j = 1; j < row.size(); ++j) {
                row[j] = std::min(row.at(j), row.at(j - 1));
            }
        }
        for (const QChar letter : pieces.at(p)) {
            int diagonal = row.at(0);
            ++row[0];
            for (int j = 1; j < row.size(); ++j) {
                const bool same = letter.toCaseFolded() == name.at(j - 1).toCaseFolded();
                const int replaced = diagonal + (same ? 0 : 1);
                diagonal = row.at(j);
                row[j] = std::min({replaced, row.at(j) + 1, row.at(j - 1) + 1});
            }
        }
    }
    return row.constLast();
}

bool SelectorPattern::parse(const QString &text, SelectorPattern &pattern, QString &error)
{
    QStringList parts = withoutScheme(text).split(QLatin1Char('/'));
    // A slash at the end of a module or a group is a habit; behind an object it names the instance
    // "".
    if (parts.size() != firstOfPath && parts.size() > 1 && parts.constLast().isEmpty()) {
        parts.removeLast();
    }
    QString problem = problemOf(parts, text);
    SelectorPattern parsed;
    if (parts.constLast() == QLatin1String("**")) {
        parsed.below = true;
        parts.removeLast();
    }
    parsed.level = static_cast<Level>(std::min(parts.size(), firstOfPath));
    for (int i = 0; i < parts.size() && problem.isEmpty(); ++i) {
        NamePattern name;
        if (!parsePart(parts.at(i), i >= firstOfPath, name)) {
            problem = QStringLiteral("\"%1\" has a part that is not a name: \"%2\"")
                          .arg(text, parts.at(i));
        }
        NamePattern *const ofSource[] = {&parsed.module, &parsed.object, &parsed.instance};
        if (i < firstOfPath) {
            *ofSource[i] = name;
        } else {
            parsed.path.append(name);
        }
    }
    if (!problem.isEmpty()) {
        error = problem;
        return false;
    }
    pattern = parsed;
    return true;
}

bool SelectorPattern::hasStars() const
{
    const auto isPattern = [](const NamePattern &name) { return !name.isName(); };
    return below || (level >= Module && isPattern(module)) || (level >= Object && isPattern(object))
        || (level >= Source && isPattern(instance))
        || std::any_of(path.begin(), path.end(), isPattern);
}

bool SelectorPattern::matchesModule(const QString &name) const
{
    return level < Module || module.matches(name);
}

bool SelectorPattern::matchesObject(const QString &moduleName, const QString &objectName) const
{
    return matchesModule(moduleName) && (level < Object || object.matches(objectName));
}

bool SelectorPattern::matchesSource(const SourceName &name) const
{
    return matchesObject(name.module, name.object)
        && (level < Source || instance.matches(name.instance));
}

bool SelectorPattern::matchesLeaf(const QString &leafPath) const
{
    const QStringList names = leafPath.split(QLatin1Char('/'));
    const int least = path.size() + (below && level == Source && !path.isEmpty() ? 1 : 0);
    if (names.size() < least) {
        return false;
    }
    return std::equal(
        path.begin(), path.end(), names.begin(),
        [](const NamePattern &wanted, const QString &name) { return wanted.matches(name); });
}

bool SelectorPattern::leadsTo(const QString &groupPath) const
{
    const QStringList names = groupPath.split(QLatin1Char('/'));
    const int common = std::min(names.size(), path.size());
    return std::equal(path.begin(), path.begin() + common, names.begin(), matchesName);
}

QString SelectorPattern::pathText() const
{
    QStringList names;
    for (const NamePattern &name : path) {
        names.append(name.toString());
    }
    return names.join(QLatin1Char('/'));
}

bool isTooLongToSuggest(const QString &name)
{
    constexpr int longestSuggested = 256;
    return name.size() > longestSuggested;
}

QStringList nearMisses(const NamePattern &wanted, const QStringList &names)
{
    constexpr int mostEdits = 3;
    constexpr int mostNames = 3;
    constexpr int mostCompared = 10000; // beyond, looking takes longer than people wait
    const int limit = std::min(mostEdits, wanted.size() / 2);
    QVector<QPair<int, QString>> near;
    for (int i = 0; i < std::min(names.size(), mostCompared); ++i) {
        if (isTooLongToSuggest(names.at(i))) {
            continue;
        }
        const int distance = wanted.distanceTo(names.at(i));
        if (distance <= limit) {
            near.append({distance, names.at(i)});
        }
    }
    std::sort(near.begin(), near.end());
    QStringList nearest;
    for (int i = 0; i < std::min(near.size(), mostNames); ++i) {
        nearest.append(near.at(i).second);
    }
    return nearest;
}
