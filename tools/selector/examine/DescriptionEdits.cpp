// SPDX-License-Identifier: MIT
// Changes the elements of a description.
#include "DescriptionEdits.h"

#include "ExactJson.h"

#include <QJsonArray>

namespace {

const QLatin1String below("elements");

QJsonArray changed(const QJsonArray &elements, const QString &prefix, int level,
                   const ElementChange &change)
{
    QJsonArray result;
    for (const QJsonValue &element : elements) {
        QJsonObject object = element.toObject();
        const QString path = pathOfElement(object, prefix);
        if (!change(path, object)) {
            continue;
        }
        if (object.value(below).isArray() && level < deepestDescriptionLevel) {
            object.insert(
                below,
                changed(object.value(below).toArray(), path + QLatin1Char('/'), level + 1, change));
        }
        result.append(object);
    }
    return result;
}

} // namespace

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
