// SPDX-License-Identifier: MIT
// How values of each type are stored, without losing a bit.
#ifndef HISTORYVALUECODEC_H
#define HISTORYVALUECODEC_H

#include "HistoryTypes.h"

namespace HistoryValueCodec {

/// The name of a type in the database; null for a number that is not a type.
QString typeName(HistoryType type);
/// @returns false for a name that this version does not know
bool typeOf(const QString &name, HistoryType *type);

/// Whether a value can be stored in a series of that type: of the same type, or invalid.
bool fits(HistoryType type, const QVariant &value);

/// What is stored: qint64, double or QByteArray; invalid for an absent value.
///
/// uint64 is stored with the bits of an int64. A NaN and the negative zero are stored as the
/// bytes of their bits, which no database rewrites. Text is stored as its UTF-8.
QVariant encode(HistoryType type, const QVariant &value);
/// The value that was encoded; invalid for what encode() never makes.
QVariant decode(HistoryType type, const QVariant &stored);

/// A number whose order is that of the values, for types with an order; false for a NaN, for text and
/// bytes and for an invalid value.
bool rank(HistoryType type, const QVariant &value, qint64 *rank);
/// The same of a value as it is stored.
bool storedRank(HistoryType type, const QVariant &stored, qint64 *rank);
/// The value with that rank.
QVariant ranked(HistoryType type, qint64 rank);
/// Nearest double, for means.
double number(HistoryType type, qint64 rank);

} // namespace HistoryValueCodec

#endif
