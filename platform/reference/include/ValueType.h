// SPDX-License-Identifier: MIT
// Types of leaves: their names in descriptions, and what holds their values.
#ifndef VALUETYPE_H
#define VALUETYPE_H

#include <QString>
#include <QVariant>

#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

/// Type of a leaf's value. The numbers are part of nothing that is stored.
enum class ValueType : quint8 {
    Bool,
    Int8,
    Int16,
    Int32,
    Int64,
    UInt8,
    UInt16,
    UInt32,
    UInt64,
    Float32,
    Float64,
    String,
    Bytes,
};

enum class ValueKind : quint8 { Bool, Signed, Unsigned, Float, String, Bytes };

struct ValueTypeRow
{
    const char *name; ///< in descriptions
    ValueKind kind;
    quint32 size; ///< bytes; 0: as much as the leaf's capacity
};

/// All types, in the order of ValueType.
inline constexpr ValueTypeRow valueTypes[] = {
    {"bool", ValueKind::Bool, 1},       {"int8", ValueKind::Signed, 1},
    {"int16", ValueKind::Signed, 2},    {"int32", ValueKind::Signed, 4},
    {"int64", ValueKind::Signed, 8},    {"uint8", ValueKind::Unsigned, 1},
    {"uint16", ValueKind::Unsigned, 2}, {"uint32", ValueKind::Unsigned, 4},
    {"uint64", ValueKind::Unsigned, 8}, {"float32", ValueKind::Float, 4},
    {"float64", ValueKind::Float, 8},   {"string", ValueKind::String, 0},
    {"bytes", ValueKind::Bytes, 0},
};

/// Type by its name in descriptions; nothing for any other text.
template <typename Text> std::optional<ValueType> valueTypeFromName(const Text &name)
{
    for (size_t i = 0; i < std::size(valueTypes); ++i) {
        if (QLatin1String(valueTypes[i].name) == name) {
            return static_cast<ValueType>(i);
        }
    }
    return std::nullopt;
}

inline QString valueTypeName(ValueType type)
{
    return QLatin1String(valueTypes[size_t(type)].name);
}

/// Bytes of payload that a value of this type needs at most.
///
/// @param capacity  of a string or bytes leaf; ignored for the other types
inline quint32 payloadSize(ValueType type, quint32 capacity)
{
    const quint32 size = valueTypes[size_t(type)].size;
    return size != 0 ? size : capacity;
}

/// Whether one value is less than another of the same type; false when they have no order.
inline bool isLess(ValueType type, const QVariant &left, const QVariant &right)
{
    switch (valueTypes[size_t(type)].kind) {
    case ValueKind::Signed:
        return left.toLongLong() < right.toLongLong();
    case ValueKind::Unsigned:
        return left.toULongLong() < right.toULongLong();
    case ValueKind::Float:
        return left.toDouble() < right.toDouble();
    case ValueKind::Bool:
    case ValueKind::String:
    case ValueKind::Bytes:
        break;
    }
    return false;
}

/// Infinite when none is near. Out of a float's range the language leaves a cast undefined.
inline float nearestFloat(double number)
{
    using Limits = std::numeric_limits<float>;
    constexpr double pastRounding = 3.4028235677973366e38; // halfway from FLT_MAX to 2^128
    const double magnitude = std::fabs(number);
    if (magnitude > static_cast<double>(Limits::max())) {
        const float held = magnitude < pastRounding ? Limits::max() : Limits::infinity();
        return number < 0 ? -held : held;
    }
    return static_cast<float>(number);
}

#endif
