// SPDX-License-Identifier: MIT
// Types of leaves and the bytes that hold their values.
#ifndef VALUETYPE_H
#define VALUETYPE_H

#include <QString>
#include <QVariant>

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

/// Type by its name in descriptions ("bool", "int8" … "bytes"); nothing for any other text.
std::optional<ValueType> valueTypeFromName(const QString &name);
std::optional<ValueType> valueTypeFromName(QLatin1String name);

/// Name of a type in descriptions.
QString valueTypeName(ValueType type);

/// Bytes of payload that a value of this type needs at most.
///
/// @param capacity  of a string or bytes leaf; ignored for the other types
quint32 payloadSize(ValueType type, quint32 capacity);

#endif
