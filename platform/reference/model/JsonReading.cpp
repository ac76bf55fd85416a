// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#include "JsonReading.h"

#include "ValueConversion.h"

#include <algorithm>

QString jsonTypeName(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a boolean");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a string");
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("missing");
}

std::optional<quint64> readWholeNumber(const QJsonObject &object, QLatin1String key, quint64 lowest,
                                       quint64 highest, const QString &place, QString &error)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble()) {
        error = QStringLiteral("%1: \"%2\" must be a whole number, but is %3")
                    .arg(place, key, jsonTypeName(value));
        return std::nullopt;
    }
    QString reason;
    const auto number = convertToType(ValueType::UInt64, value.toVariant(), reason);
    if (!number || number->toULongLong() < lowest || number->toULongLong() > highest) {
        error = QStringLiteral("%1: \"%2\" must be a whole number from %3 to %4, but is %5")
                    .arg(place, key)
                    .arg(lowest)
                    .arg(highest)
                    .arg(value.toVariant().toString());
        return std::nullopt;
    }
    return number->toULongLong();
}

std::optional<QString> readText(const QJsonObject &object, QLatin1String key, bool mayBeMissing,
                                const QString &place, QString &error)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined() && mayBeMissing) {
        return QString();
    }
    if (!value.isString()) {
        error = QStringLiteral("%1: \"%2\" must be a string, but is %3")
                    .arg(place, key, jsonTypeName(value));
        return std::nullopt;
    }
    return value.toString();
}

bool hasControlCharacter(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.category() == QChar::Other_Control; });
}

bool isNameText(const QString &text)
{
    return text.isValidUtf16() && !hasControlCharacter(text);
}
