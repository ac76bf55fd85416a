// SPDX-License-Identifier: MIT
// Renders values for people and for programs.
#ifndef VALUETEXT_H
#define VALUETEXT_H

#include <QJsonValue>
#include <QString>
#include <QVariant>

/// Text of a property: a string as it is, a list or an object as JSON on one line, "nothing" for none.
QString propertyToText(const QJsonValue &value);

/// Text of a value: true or false, the shortest digits that read back as the same number, strings
/// as they are, bytes as 0x and hexadecimal digits. Empty for an invalid value.
QString valueToText(const QVariant &value);

/// The same for people: a float64 rounded to ten significant digits.
QString valueToShortText(const QVariant &value);

/// JSON of a value: booleans, numbers, strings; bytes as a string as above. Integers beyond
/// ±9007199254740991, which many readers round, numbers that JSON lacks (NaN, Infinity, -Infinity)
/// and -0, whose sign many readers drop, are strings. null for an invalid value.
QJsonValue valueToJson(const QVariant &value);

/// Local time with milliseconds and offset from UTC, as ISO 8601.
///
/// @param timestamp  nanoseconds since 1970-01-01 00:00 UTC; 0 gives an empty text
QString timeToIsoText(qint64 timestamp);

/// The same without offset, for people.
QString timeToText(qint64 timestamp);

#endif
