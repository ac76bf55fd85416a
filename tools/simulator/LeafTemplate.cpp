// SPDX-License-Identifier: MIT
// Walks a description file.
#include "LeafTemplate.h"

#include <QJsonArray>

#include <algorithm>

namespace {

constexpr int deepestLevel = 64; // what descriptions may have at most

const QLatin1String elementsKey("elements");
const QLatin1String simulateKey("simulate");

void collect(const QJsonArray &elements, const QString &prefix, int level,
             QVector<LeafTemplate> &leaves)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject object = element.toObject();
        const QString path = prefix + object.value(QLatin1String("name")).toString();
        if (object.contains(elementsKey)) {
            if (level < deepestLevel) {
                collect(object.value(elementsKey).toArray(), path + QLatin1Char('/'), level + 1,
                        leaves);
            }
            continue;
        }
        const auto type = leafType(object.value(QLatin1String("type")).toString());
        if (type) {
            QJsonObject properties = object;
            properties.remove(simulateKey);
            leaves.append({path, *type, properties, object.value(simulateKey).toObject(),
                           object.contains(simulateKey)});
        }
    }
}

QJsonArray stripped(const QJsonArray &elements, int level)
{
    QJsonArray result;
    for (const QJsonValue &element : elements) {
        if (!element.isObject() || level > deepestLevel) {
            result.append(element);
            continue;
        }
        QJsonObject object = element.toObject();
        object.remove(simulateKey);
        if (object.value(elementsKey).isArray()) {
            object.insert(elementsKey, stripped(object.value(elementsKey).toArray(), level + 1));
        }
        result.append(object);
    }
    return result;
}

bool sameSlot(const LeafTemplate &left, const LeafTemplate &right)
{
    const QLatin1String capacity("capacity");
    const QLatin1String readOnly("readOnly");
    return left.path == right.path && left.type.name == right.type.name
        && left.properties.value(capacity) == right.properties.value(capacity)
        && left.properties.value(readOnly).toBool() == right.properties.value(readOnly).toBool();
}

} // namespace

QVector<LeafTemplate> leafTemplates(const QJsonObject &document)
{
    QVector<LeafTemplate> leaves;
    collect(document.value(elementsKey).toArray(), QString(), 1, leaves);
    return leaves;
}

QJsonObject withoutSimulation(const QJsonObject &document)
{
    QJsonObject result = document;
    if (document.value(elementsKey).isArray()) {
        result.insert(elementsKey, stripped(document.value(elementsKey).toArray(), 1));
    }
    return result;
}

bool sameLayout(const QJsonObject &left, const QJsonObject &right)
{
    const QVector<LeafTemplate> leftLeaves = leafTemplates(left);
    const QVector<LeafTemplate> rightLeaves = leafTemplates(right);
    return leftLeaves.size() == rightLeaves.size()
        && std::equal(leftLeaves.begin(), leftLeaves.end(), rightLeaves.begin(), sameSlot);
}
