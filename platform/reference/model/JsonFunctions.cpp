// SPDX-License-Identifier: MIT
// Reading single values out of JSON.
#include "JsonFunctions.h"

#include <QJsonDocument>
#include <QStringList>

bool readJsonValue(const QString &key, const QJsonObject &object, QJsonValue &value)
{
    const auto found = object.constFind(key);
    if (found == object.constEnd()) {
        return false;
    }
    value = *found;
    return true;
}

bool readJsonArrayFromJson(const QString &key, const QJsonObject &object, QJsonArray &array)
{
    QJsonValue value = object;
    const QStringList keys = key.split(QLatin1Char('/'));
    for (const QString &step : keys) {
        if (!value.isObject() || !readJsonValue(step, value.toObject(), value)) {
            return false;
        }
    }
    if (!value.isArray()) {
        return false;
    }
    array = value.toArray();
    return true;
}

QJsonArray createJsonArrayFromJsonString(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).array();
}
