// SPDX-License-Identifier: MIT
// A JSON text that was gone over once, and the values in it.
#include "JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

QString JsonNode::toText() const
{
    if (item.kind != JsonKind::String) {
        return QString();
    }
    const QLatin1String spelled = bytes();
    return isPlain() ? QString::fromUtf8(spelled.data(), spelled.size()) : toJsonValue().toString();
}

QJsonValue JsonNode::toJsonValue() const
{
    if (isUndefined()) {
        return QJsonValue(QJsonValue::Undefined);
    }
    const QLatin1String spelled = bytes();
    const QByteArray quote(item.kind == JsonKind::String ? "\"" : "");
    const QByteArray array = '[' + quote + QByteArray(spelled.data(), spelled.size()) + quote + ']';
    return QJsonDocument::fromJson(array).array().first();
}
