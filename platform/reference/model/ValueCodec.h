// SPDX-License-Identifier: MIT
// Converts between QVariant and a leaf's payload bytes, without loss or not at all.
#ifndef VALUECODEC_H
#define VALUECODEC_H

#include "LeafDescription.h"

#include <QByteArray>
#include <QVariant>

/// Converts a value to a leaf's payload.
///
/// @param value    must convert to the leaf's type without loss (convertToType says how) and lie
///                 within its minimum and maximum
/// @param payload  receives the bytes in the machine's order, exactly as long as the value: text as
///                 UTF-8 without a terminator; left alone on failure
/// @param error    receives one sentence that names the value and the reason; left alone on success
/// @returns whether it could be converted
bool encodeValue(const LeafDescription &leaf, const QVariant &value, QByteArray &payload,
                 QString &error);

/// Converts a payload to a value: bool, int for int8 … int32, uint for uint8 … uint32, qlonglong,
/// qulonglong, float, double, QString or QByteArray.
///
/// @param length  bytes that are valid; of a number its full size
/// Never reads past @p length; an invalid QVariant when a number's length is
/// wrong or a text's past 2 GiB.
QVariant decodeValue(ValueType type, const char *payload, quint32 length);

#endif
