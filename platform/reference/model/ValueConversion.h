// SPDX-License-Identifier: MIT
// Brings a QVariant to a leaf's type without loss.
#ifndef VALUECONVERSION_H
#define VALUECONVERSION_H

#include "ValueType.h"

#include <QString>
#include <QVariant>

#include <optional>

/// Converts a value to the QVariant type that decodeValue gives for the same leaf type.
///
/// Numbers must be exact, but for one thing: a floating-point value for a float32 leaf is rounded
/// to the nearest float, because that is all such a leaf can tell. Digits alone count as a whole
/// number, other text as a floating-point one. A bool takes false, true, 0, 1 and their texts.
/// NaN and the infinities are values of float32 and float64 only.
///
/// @param reason  receives why it does not convert, as the end of a sentence; left alone on success
std::optional<QVariant> convertToType(ValueType type, const QVariant &value, QString &reason);

/// A value as it stands in messages, shortened when it is long.
QString printable(const QVariant &value);

#endif
