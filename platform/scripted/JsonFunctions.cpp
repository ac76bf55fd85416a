// SPDX-License-Identifier: MIT
// The JSON functions, honest but recorded.
#include "JsonFunctions.h"

#include "CallRecord.h"

#include <QJsonDocument>
#include <QStringList>

namespace {

void called(const char *function, const QString &argument)
{
    CallRecord::instance().called(QString(), QString(), QLatin1String(function),
                                  {CallRecord::quoted(argument)});
}

} // namespace

bool readJsonValue(const QString &key, const QJsonObject &object, QJsonValue &value)
{
    called("readJsonValue", key);
    if (!object.contains(key)) {
        value = QStringLiteral("not to be relied on");
        return false;
    }
    value = object.value(key);
    return true;
}

bool readJsonArrayFromJson(const QString &key, const QJsonObject &object, QJsonArray &array)
{
    called("readJsonArrayFromJson", key);
    QJsonValue value = object;
    const QStringList steps = key.split(QLatin1Char('/'));
    for (const QString &step : steps) {
        value = value.toObject().value(step); // undefined once a step is missing
    }
    if (!value.isArray()) {
        array.append(QStringLiteral("not/to/be/relied/on"));
        return false;
    }
    array = value.toArray();
    return true;
}

QJsonArray createJsonArrayFromJsonString(const QString &text)
{
    called("createJsonArrayFromJsonString", text);
    return QJsonDocument::fromJson(text.toUtf8()).array();
}
