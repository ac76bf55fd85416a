// SPDX-License-Identifier: MIT
// Walks a description.
#include "DescriptionLeaves.h"

#include "SelectorUrlParser.h"

#include <QJsonArray>

namespace {

void collect(const QJsonArray &elements, const QString &prefix, int level,
             QVector<DescribedLeaf> &leaves)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject object = element.toObject();
        const QString path = pathOfElement(object, prefix);
        if (path.size() > selectorUrlMaximumLength) {
            continue; // no URL can name it
        }
        const QJsonValue inside = object.value(QLatin1String("elements"));
        if (inside.isUndefined()) {
            leaves.append({path, object});
        } else if (level < deepestDescriptionLevel) {
            collect(inside.toArray(), path + QLatin1Char('/'), level + 1, leaves);
        }
    }
}

} // namespace

QString pathOfElement(const QJsonObject &element, const QString &prefix)
{
    return prefix + element.value(QLatin1String("name")).toString();
}

QVector<DescribedLeaf> leavesBelow(const QJsonObject &document, const QString &group)
{
    QVector<DescribedLeaf> all;
    collect(document.value(QLatin1String("elements")).toArray(), QString(), 1, all);
    if (group.isEmpty()) {
        return all;
    }
    QVector<DescribedLeaf> wanted;
    for (const DescribedLeaf &leaf : qAsConst(all)) {
        if (leaf.path == group || leaf.path.startsWith(group + QLatin1Char('/'))) {
            wanted.append(leaf);
        }
    }
    return wanted;
}
