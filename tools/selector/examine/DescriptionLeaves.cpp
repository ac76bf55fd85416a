// SPDX-License-Identifier: MIT
// Walks a description.
#include "DescriptionLeaves.h"

#include <QJsonArray>

namespace {

constexpr int deepestLevel = 64; // what descriptions may have at most

void collect(const QJsonArray &elements, const QString &prefix, int level,
             QVector<DescribedLeaf> &leaves)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject object = element.toObject();
        const QString path = prefix + object.value(QLatin1String("name")).toString();
        const QJsonValue below = object.value(QLatin1String("elements"));
        if (below.isUndefined()) {
            leaves.append({path, object});
        } else if (level < deepestLevel) {
            collect(below.toArray(), path + QLatin1Char('/'), level + 1, leaves);
        }
    }
}

} // namespace

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
