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

JsonNode JsonNode::value(const JsonKey &key) const
{
    const QVector<quint32> &sorted = whole->shapes.at(int(item.size)).sorted;
    const quint32 *const numbers = sorted.constData();
    for (int i = 0; i < sorted.size(); ++i) {
        if (numbers[i] == key.number) {
            return {*whole, whole->items.at(int(item.begin) + i)};
        }
    }
    return {};
}
