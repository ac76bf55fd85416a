// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#include "JsonReading.h"

#include "ValueConversion.h"

#include <charconv>
#include <system_error>

namespace {

template <typename Whole> std::optional<Whole> wholeFromDigits(const JsonNode &value)
{
    if (value.kind() != JsonKind::Number || !value.isPlain()) {
        return std::nullopt;
    }
    const QLatin1String digits = value.bytes();
    const char *const end = digits.data() + digits.size();
    Whole number = 0;
    const auto result = std::from_chars(digits.data(), end, number);
    // A fraction ends it earlier.
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::optional<quint64> wholeNumber(const JsonNode &value)
{
    if (const auto spelled = signedWholeNumber(value)) {
        return *spelled >= 0 ? std::optional(quint64(*spelled)) : std::nullopt;
    }
    QString reason;
    const auto converted = convertToType(ValueType::UInt64, numberOf(value), reason);
    return converted ? std::optional(quint64(converted->toULongLong())) : std::nullopt;
}

} // namespace

QString jsonTypeName(JsonKind kind)
{
    switch (kind) {
    case JsonKind::Null:
        return QStringLiteral("null");
    case JsonKind::Bool:
        return QStringLiteral("a boolean");
    case JsonKind::Number:
        return QStringLiteral("a number");
    case JsonKind::String:
        return QStringLiteral("a string");
    case JsonKind::Array:
        return QStringLiteral("an array");
    case JsonKind::Object:
        return QStringLiteral("an object");
    case JsonKind::Undefined:
        break;
    }
    return QStringLiteral("missing");
}

std::optional<qint64> signedWholeNumber(const JsonNode &value)
{
    return wholeFromDigits<qint64>(value);
}

QVariant numberOf(const JsonNode &value)
{
    if (const auto spelled = signedWholeNumber(value)) {
        return QVariant(qlonglong(*spelled));
    }
    if (const auto spelled = wholeFromDigits<quint64>(value)) {
        return QVariant(qulonglong(*spelled));
    }
    return value.toJsonValue().toVariant();
}

std::optional<quint64> readWholeNumber(const JsonNode &object, const JsonKey &key, quint64 lowest,
                                       quint64 highest, const JsonPlace &place, QString &error)
{
    const JsonNode value = object.value(key);
    if (value.kind() != JsonKind::Number) {
        error = QStringLiteral("%1: \"%2\" must be a whole number, but is %3")
                    .arg(place.text(), key.name, jsonTypeName(value.kind()));
        return std::nullopt;
    }
    const auto number = wholeNumber(value);
    if (!number || *number < lowest || *number > highest) {
        error = QStringLiteral("%1: \"%2\" must be a whole number from %3 to %4, but is %5")
                    .arg(place.text(), key.name)
                    .arg(lowest)
                    .arg(highest)
                    .arg(numberOf(value).toString());
        return std::nullopt;
    }
    return number;
}

bool checkText(const JsonNode &value, const JsonKey &key, bool mayBeMissing, const JsonPlace &place,
               QString &error)
{
    if (value.kind() == JsonKind::String || (mayBeMissing && value.isUndefined())) {
        return true;
    }
    error = QStringLiteral("%1: \"%2\" must be a string, but is %3")
                .arg(place.text(), key.name, jsonTypeName(value.kind()));
    return false;
}

std::optional<QString> readText(const JsonNode &object, const JsonKey &key, bool mayBeMissing,
                                const JsonPlace &place, QString &error)
{
    const JsonNode value = object.value(key);
    return checkText(value, key, mayBeMissing, place, error) ? std::optional(value.toText())
                                                             : std::nullopt;
}
