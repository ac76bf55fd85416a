// SPDX-License-Identifier: MIT
// Walks a description.
#include "DescriptionLeaves.h"

#include "ExactJson.h"

namespace {

constexpr int deepestLevel = 64; // what descriptions may have at most
const QLatin1String below("elements");

QString pathOf(const QJsonObject &element, const QString &prefix)
{
    return prefix + element.value(QLatin1String("name")).toString();
}

void collect(const QJsonArray &elements, const QString &prefix, int level,
             QVector<DescribedLeaf> &leaves)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject object = element.toObject();
        const QString path = pathOf(object, prefix);
        const QJsonValue inside = object.value(below);
        if (inside.isUndefined()) {
            leaves.append({path, object});
        } else if (level < deepestLevel) {
            collect(inside.toArray(), path + QLatin1Char('/'), level + 1, leaves);
        }
    }
}

QJsonArray changed(const QJsonArray &elements, const QString &prefix, int level,
                   const ElementChange &change)
{
    QJsonArray result;
    for (const QJsonValue &element : elements) {
        QJsonObject object = element.toObject();
        const QString path = pathOf(object, prefix);
        if (!change(path, object)) {
            continue;
        }
        if (object.value(below).isArray() && level < deepestLevel) {
            object.insert(
                below,
                changed(object.value(below).toArray(), path + QLatin1Char('/'), level + 1, change));
        }
        result.append(object);
    }
    return result;
}

} // namespace

QVector<DescribedLeaf> leavesBelow(const QJsonObject &document, const QString &group)
{
    QVector<DescribedLeaf> all;
    collect(document.value(below).toArray(), QString(), 1, all);
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

QVector<DescribedLeaf> leavesBelow(const QString &description, const QString &group)
{
    return leavesBelow(exactObject(description.toUtf8()), group);
}

QJsonObject withElements(const QJsonObject &document, const ElementChange &change)
{
    QJsonObject result = document;
    result.insert(below, changed(document.value(below).toArray(), QString(), 1, change));
    return result;
}
