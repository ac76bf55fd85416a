// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#include "JsonReading.h"

#include "ValueConversion.h"

#include <algorithm>
#include <cmath>

namespace {

// Sizes and offsets are exact as they are; higher numbers need their digits.
std::optional<quint64> wholeNumber(const QJsonValue &value)
{
    constexpr double highestExact = 9007199254740992.0; // 2^53
    const double number = value.toDouble();
    if (number >= 0 && number < highestExact) {
        return std::trunc(number) == number ? std::optional(quint64(number)) : std::nullopt;
    }
    QString reason;
    const auto converted = convertToType(ValueType::UInt64, value.toVariant(), reason);
    return converted ? std::optional(quint64(converted->toULongLong())) : std::nullopt;
}

bool checkText(const QJsonValue &value, QLatin1String key, bool mayBeMissing,
               const JsonPlace &place, QString &error)
{
    if (value.isString() || (mayBeMissing && value.isUndefined())) {
        return true;
    }
    error = QStringLiteral("%1: \"%2\" must be a string, but is %3")
                .arg(place.text(), key, jsonTypeName(value));
    return false;
}

} // namespace

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
                                       quint64 highest, const JsonPlace &place, QString &error)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble()) {
        error = QStringLiteral("%1: \"%2\" must be a whole number, but is %3")
                    .arg(place.text(), key, jsonTypeName(value));
        return std::nullopt;
    }
    const auto number = wholeNumber(value);
    if (!number || *number < lowest || *number > highest) {
        error = QStringLiteral("%1: \"%2\" must be a whole number from %3 to %4, but is %5")
                    .arg(place.text(), key)
                    .arg(lowest)
                    .arg(highest)
                    .arg(value.toVariant().toString());
        return std::nullopt;
    }
    return number;
}

std::optional<QString> readText(const QJsonObject &object, QLatin1String key, bool mayBeMissing,
                                const JsonPlace &place, QString &error)
{
    const QJsonValue value = object.value(key);
    return checkText(value, key, mayBeMissing, place, error) ? std::optional(value.toString())
                                                             : std::nullopt;
}

bool checkOptionalText(const QJsonObject &object, QLatin1String key, const JsonPlace &place,
                       QString &error)
{
    return checkText(object.value(key), key, true, place, error);
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
