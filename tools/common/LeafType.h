// SPDX-License-Identifier: MIT
// Types of leaves by the names that descriptions give them, and values of these types.
#ifndef LEAFTYPE_H
#define LEAFTYPE_H

#include "ValueType.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <optional>

/// What the tools need to know of a leaf's type.
struct LeafType
{
    ValueType type = ValueType::Float64;
    QString name;
    ValueKind kind = ValueKind::Float;
    int bits = 0; ///< of a number

    bool isInteger() const { return kind == ValueKind::Signed || kind == ValueKind::Unsigned; }
    bool isNumber() const { return isInteger() || kind == ValueKind::Float; }

    /// Smallest and largest value; of 64-bit integers the nearest double.
    double lowest() const;
    double highest() const;
};

/// Type by its name in descriptions ("bool", "int8" … "bytes"); nothing for any other text.
std::optional<LeafType> leafType(const QString &name);

/// Converts text as people type it, and as valueToText prints it: true and false (also 1, 0, on,
/// off), decimal and 0x numbers, NaN, Infinity and -Infinity, strings as they are, bytes as 0x and pairs of hexadecimal digits.
///
/// @param value  receives a value of the leaf's own type; left alone on failure
/// @param error  receives the reason, without the text itself; left alone on success
bool valueFromText(const LeafType &type, const QString &text, QVariant &value, QString &error);

/// Converts a JSON value: a boolean, a number, a string; bytes as a string as above. Numbers that
/// valueToJson writes as strings are read as such.
bool valueFromJson(const LeafType &type, const QJsonValue &json, QVariant &value, QString &error);

/// Converts a number, rounded for integers and held within the type's range; true from 0.5.
QVariant valueFromNumber(const LeafType &type, double number);

/// Whether a value keeps the limits that a leaf's properties state ("minimum", "maximum",
/// "capacity").
///
/// @param properties  limits that JSON would round are strings of their digits
/// @param error  receives the limit that is broken; left alone on success
bool checkLimits(const LeafType &type, const QJsonObject &properties, const QVariant &value,
                 QString &error);

#endif
