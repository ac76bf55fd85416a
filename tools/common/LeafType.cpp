// SPDX-License-Identifier: MIT
// Types of leaves and the values that they can hold.
#include "LeafType.h"

#include <climits>
#include <cmath>
#include <limits>

namespace {

QVariant fromSigned(int bits, qlonglong number)
{
    return bits == 64 ? QVariant(number) : QVariant(static_cast<int>(number));
}

QVariant fromUnsigned(int bits, qulonglong number)
{
    return bits == 64 ? QVariant(number) : QVariant(static_cast<uint>(number));
}

QVariant fromFloat(int bits, double number)
{
    return bits == 32 ? QVariant(nearestFloat(number)) : QVariant(number);
}

QString rangeError(const LeafType &type)
{
    if (type.kind == ValueKind::Signed) {
        const qlonglong highest = std::numeric_limits<qlonglong>::max() >> (64 - type.bits);
        return QStringLiteral("%1 holds %2 to %3").arg(type.name).arg(-highest - 1).arg(highest);
    }
    const qulonglong highest = std::numeric_limits<qulonglong>::max() >> (64 - type.bits);
    return QStringLiteral("%1 holds 0 to %2").arg(type.name).arg(highest);
}

// Base 0 would read a leading zero as octal, which nobody who types 010 expects.
int baseOf(const QString &digits)
{
    return digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? 16 : 10;
}

bool looksLikeInteger(const QString &text)
{
    const QString digits = text.startsWith(QLatin1Char('-')) || text.startsWith(QLatin1Char('+'))
        ? text.mid(1)
        : text;
    const bool hexadecimal = baseOf(digits) == 16;
    const QString bare = hexadecimal ? digits.mid(2) : digits;
    for (const QChar c : bare) {
        const ushort code = c.toLower().unicode();
        if (!((code >= '0' && code <= '9') || (hexadecimal && code >= 'a' && code <= 'f'))) {
            return false;
        }
    }
    return !bare.isEmpty();
}

bool integerFromText(const LeafType &type, const QString &text, QVariant &value, QString &error)
{
    if (!looksLikeInteger(text)) {
        error = QStringLiteral("is not an integer, as %1 needs").arg(type.name);
        return false;
    }
    const QString digits = text.startsWith(QLatin1Char('+')) ? text.mid(1) : text;
    const int base = baseOf(digits.startsWith(QLatin1Char('-')) ? digits.mid(1) : digits);
    bool ok = false;
    if (type.kind == ValueKind::Signed) {
        const qlonglong number = digits.toLongLong(&ok, base);
        const qlonglong highest = std::numeric_limits<qlonglong>::max() >> (64 - type.bits);
        if (ok && number <= highest && number >= -highest - 1) {
            value = fromSigned(type.bits, number);
            return true;
        }
    } else {
        const qulonglong number = digits.toULongLong(&ok, base);
        const qulonglong highest = std::numeric_limits<qulonglong>::max() >> (64 - type.bits);
        if (ok && number <= highest && !digits.startsWith(QLatin1Char('-'))) {
            value = fromUnsigned(type.bits, number);
            return true;
        }
    }
    error = QStringLiteral("does not fit: %1").arg(rangeError(type));
    return false;
}

// As reading prints it, too, which Qt does not read.
std::optional<double> realFromText(const QString &text)
{
    static const QLatin1String infinity("infinity");
    const bool isSigned = text.startsWith(QLatin1Char('-')) || text.startsWith(QLatin1Char('+'));
    if (text.midRef(isSigned ? 1 : 0).compare(infinity, Qt::CaseInsensitive) == 0) {
        constexpr double infinite = std::numeric_limits<double>::infinity();
        return text.startsWith(QLatin1Char('-')) ? -infinite : infinite;
    }
    bool ok = false;
    const double number = text.toDouble(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

bool floatFromText(const LeafType &type, const QString &text, QVariant &value, QString &error)
{
    const auto real = realFromText(text);
    if (!real) {
        error = QStringLiteral("is not a number, as %1 needs").arg(type.name);
        return false;
    }
    const double number = *real;
    if (std::isfinite(number) && type.bits == 32 && std::isinf(nearestFloat(number))) {
        error = QStringLiteral("does not fit into %1").arg(type.name);
        return false;
    }
    value = fromFloat(type.bits, number);
    return true;
}

// What valueToJson writes as text, because a JSON number would not keep it.
bool isExactJsonText(const LeafType &type, const QString &text)
{
    static const QStringList reals{QStringLiteral("NaN"), QStringLiteral("Infinity"),
                                   QStringLiteral("-Infinity"), QStringLiteral("-0")};
    constexpr int digitsOfDoubles = 16;
    return type.kind == ValueKind::Float ? reals.contains(text) : text.size() >= digitsOfDoubles;
}

bool boolFromText(const QString &text, QVariant &value, QString &error)
{
    const QString word = text.toLower();
    if (word == QLatin1String("true") || word == QLatin1String("1")
        || word == QLatin1String("on")) {
        value = true;
        return true;
    }
    if (word == QLatin1String("false") || word == QLatin1String("0")
        || word == QLatin1String("off")) {
        value = false;
        return true;
    }
    error = QStringLiteral("is neither true nor false, as bool needs");
    return false;
}

bool bytesFromText(const QString &text, QVariant &value, QString &error)
{
    const QByteArray digits = text.mid(2).toLatin1();
    const QByteArray bytes = QByteArray::fromHex(digits);
    if (!text.startsWith(QLatin1String("0x")) || bytes.toHex() != digits.toLower()) {
        error = QStringLiteral("is not 0x and pairs of hexadecimal digits, as bytes needs");
        return false;
    }
    value = bytes;
    return true;
}

} // namespace

double LeafType::lowest() const
{
    switch (kind) {
    case ValueKind::Signed:
        return -std::ldexp(1.0, bits - 1);
    case ValueKind::Float:
        return bits == 32 ? -std::numeric_limits<float>::max()
                          : -std::numeric_limits<double>::max();
    default:
        return 0;
    }
}

double LeafType::highest() const
{
    switch (kind) {
    case ValueKind::Bool:
        return 1;
    case ValueKind::Signed:
        return std::ldexp(1.0, bits - 1) - (bits == 64 ? 1024 : 1);
    case ValueKind::Unsigned:
        return std::ldexp(1.0, bits) - (bits == 64 ? 2048 : 1);
    case ValueKind::Float:
        return bits == 32 ? std::numeric_limits<float>::max() : std::numeric_limits<double>::max();
    default:
        return 0;
    }
}

std::optional<LeafType> leafType(const QString &name)
{
    const auto type = valueTypeFromName(name);
    if (!type) {
        return std::nullopt;
    }
    const ValueTypeRow &row = valueTypes[size_t(*type)];
    return LeafType{*type, name, row.kind, int(row.size) * CHAR_BIT};
}

bool valueFromText(const LeafType &type, const QString &text, QVariant &value, QString &error)
{
    switch (type.kind) {
    case ValueKind::Bool:
        return boolFromText(text, value, error);
    case ValueKind::Signed:
    case ValueKind::Unsigned:
        return integerFromText(type, text, value, error);
    case ValueKind::Float:
        return floatFromText(type, text, value, error);
    case ValueKind::Bytes:
        return bytesFromText(text, value, error);
    case ValueKind::String:
        break;
    }
    value = text;
    return true;
}

bool valueFromJson(const LeafType &type, const QJsonValue &json, QVariant &value, QString &error)
{
    const bool textual = type.kind == ValueKind::String || type.kind == ValueKind::Bytes;
    if (textual && json.isString()) {
        return valueFromText(type, json.toString(), value, error);
    }
    if (type.isNumber() && json.isString() && isExactJsonText(type, json.toString())) {
        return valueFromText(type, json.toString(), value, error);
    }
    if (type.kind == ValueKind::Bool && json.isBool()) {
        value = json.toBool();
        return true;
    }
    if (type.isNumber() && json.isDouble()) {
        const QVariant number = json.toVariant();
        // A whole number keeps all 64 bits on its way through text; a fraction must stay one.
        const QString text = number.type() == QVariant::Double
            ? QString::number(number.toDouble(), type.kind == ValueKind::Float ? 'g' : 'f',
                              type.kind == ValueKind::Float ? 17 : -128)
            : number.toString();
        return valueFromText(type, text, value, error);
    }
    error = QStringLiteral("is of the wrong JSON type for %1").arg(type.name);
    return false;
}

QVariant valueFromNumber(const LeafType &type, double number)
{
    const double held = qBound(type.lowest(), number, type.highest());
    switch (type.kind) {
    case ValueKind::Bool:
        return number >= 0.5;
    case ValueKind::Signed:
        return fromSigned(type.bits, static_cast<qlonglong>(std::llround(held)));
    case ValueKind::Unsigned:
        return fromUnsigned(type.bits, static_cast<qulonglong>(std::round(held)));
    default:
        return fromFloat(type.bits, held);
    }
}
