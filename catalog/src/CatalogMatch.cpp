// SPDX-License-Identifier: MIT
// What a pattern means in the system, and what comes near when it means nothing.
#include "Catalog.h"

#include <algorithm>

using ProcessDataAccess::Result;

namespace {

// What one step down the tree has: of all that matched so far.
struct Step
{
    const char *what; // is missing, for people
    NamePattern wanted;
    QStringList names;
};

QString listed(QStringList names)
{
    constexpr int shown = 8;
    names.sort();
    names.removeDuplicates();
    const int more = names.size() - shown;
    names = names.mid(0, shown);
    QString text = QLatin1Char('"') + names.join(QLatin1String("\", \"")) + QLatin1Char('"');
    return more > 0 ? text + QStringLiteral(" and %1 more").arg(more) : text;
}

QString hintOf(const Step &step)
{
    QStringList names = step.names;
    names.erase(std::remove_if(names.begin(), names.end(), isTooLongToSuggest), names.end());
    names.sort();
    names.removeDuplicates();
    const QString miss
        = QStringLiteral("no %1 %2 \"%3\"")
              .arg(QLatin1String(step.what),
                   step.wanted.isName() ? QStringLiteral("is called") : QStringLiteral("matches"),
                   step.wanted.toString());
    const QStringList near = nearMisses(step.wanted, names);
    if (!near.isEmpty()) {
        return miss + QStringLiteral("; did you mean %1?").arg(listed(near));
    }
    if (step.names.isEmpty()) {
        return miss + QStringLiteral("; there is none");
    }
    return names.isEmpty() ? miss : miss + QStringLiteral("; there is %1").arg(listed(names));
}

bool matchesAny(const Step &step)
{
    return std::any_of(step.names.begin(), step.names.end(),
                       [&step](const QString &name) { return step.wanted.matches(name); });
}

// The names at one depth of paths whose names above match.
QStringList namesAt(int depth, const QVector<NamePattern> &path, const QStringList &leafPaths)
{
    QStringList names;
    for (const QString &leafPath : leafPaths) {
        const QStringList parts = leafPath.split(QLatin1Char('/'));
        if (parts.size() > depth
            && std::equal(path.begin(), path.begin() + depth, parts.begin(),
                          [](const NamePattern &wanted, const QString &name) {
                              return wanted.matches(name);
                          })) {
            names.append(parts.at(depth));
        }
    }
    return names;
}

// The service may be there and have no such thing, or not be there at all: so may be the name.
bool maySpeakOfNames(const CatalogItem &item)
{
    return item.answer.result == Result::ServiceMissing
        || item.answer.result == Result::ServiceFailed;
}

} // namespace

CatalogMatch Catalog::find(const SelectorPattern &pattern)
{
    CatalogMatch found;
    if (pattern.needsModules()) {
        const CatalogAnswer answer = askModules();
        if (!answer.isOk()) {
            found.failed.append({CatalogItem::Module, {}, answer});
            return found;
        }
    }
    const QVector<CatalogItem> all = items(pattern);
    for (const CatalogItem &item : all) {
        CatalogAnswer answer = item.answer;
        if (item.kind == CatalogItem::Source) {
            const CatalogSource &described = source(item.name);
            answer = described.answer;
            for (const DescribedLeaf &leaf : described.leaves) {
                if (pattern.matchesLeaf(leaf.path)) {
                    found.leaves.append({item.name, leaf.path});
                }
            }
        }
        if (!answer.isOk()) {
            found.failed.append({item.kind, item.name, answer});
        }
    }
    return found;
}

CatalogMatch Catalog::match(const SelectorPattern &pattern)
{
    CatalogMatch found = find(pattern);
    if (found.leaves.isEmpty()
        && std::all_of(found.failed.begin(), found.failed.end(), maySpeakOfNames)) {
        explainMiss(pattern, found);
    }
    return found;
}

// Objects of what a pattern matches so far, or instances; false when somebody gives no answer.
bool Catalog::namesBelow(SelectorPattern pattern, SelectorPattern::Level level, QStringList &names)
{
    pattern.level = level;
    const bool wantsObjects = level == SelectorPattern::Module;
    const QVector<CatalogItem> all = items(pattern);
    for (const CatalogItem &item : all) {
        if (!item.answer.isOk()) {
            return false;
        }
        if (item.kind == (wantsObjects ? CatalogItem::Object : CatalogItem::Source)) {
            names.append(wantsObjects ? item.name.object : item.name.instance);
        }
    }
    return true;
}

bool Catalog::leafPathsOf(const SelectorPattern &pattern, QStringList &paths)
{
    const QVector<CatalogItem> all = items(pattern);
    for (const CatalogItem &item : all) {
        if (item.kind != CatalogItem::Source) {
            continue;
        }
        const CatalogSource &described = source(item.name);
        if (!described.answer.isOk()) {
            return false;
        }
        for (const DescribedLeaf &leaf : described.leaves) {
            paths.append(leaf.path);
        }
    }
    return true;
}

bool Catalog::modulesFor(const SelectorPattern &pattern, QStringList &names)
{
    names = moduleNames();
    // One that runs without being registered.
    if (pattern.module.isName() && objectsOf(pattern.module.toString()).answer.isOk()) {
        names.append(pattern.module.toString());
    }
    return askModules().isOk();
}

void Catalog::explainMiss(const SelectorPattern &pattern, CatalogMatch &found)
{
    constexpr int firstOfPath = 3;
    const int parts = pattern.level + pattern.path.size();
    QStringList paths;
    for (int part = 0; part < parts; ++part) {
        Step step{"module", pattern.module, {}};
        bool known = false;
        if (part == 0) {
            known = modulesFor(pattern, step.names);
        } else if (part == 1) {
            step = {"object", pattern.object, {}};
            known = namesBelow(pattern, SelectorPattern::Module, step.names);
        } else if (part == 2) {
            step = {"instance", pattern.instance, {}};
            known = namesBelow(pattern, SelectorPattern::Object, step.names);
        } else {
            known = part > firstOfPath || leafPathsOf(pattern, paths);
            const int depth = part - firstOfPath;
            step = {"group or leaf", pattern.path.at(depth), namesAt(depth, pattern.path, paths)};
        }
        if (!known) {
            return;
        }
        if (!matchesAny(step)) {
            found.missing = static_cast<CatalogMatch::Part>(std::min(part, firstOfPath) + 1);
            found.hint = hintOf(step);
            return;
        }
    }
    if (found.failed.isEmpty()) { // or else what failed says why
        found.missing = CatalogMatch::Path;
        found.hint = QStringLiteral("nothing is below it");
    }
}
