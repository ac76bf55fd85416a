// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#ifndef JSONREADING_H
#define JSONREADING_H

#include <QJsonObject>
#include <QString>

#include <optional>

/// Reads a whole number between limits.
///
/// @param place  what holds the key, for the message
/// @returns nothing, with an error, when the key is missing or holds anything else
std::optional<quint64> readWholeNumber(const QJsonObject &object, QLatin1String key, quint64 lowest,
                                       quint64 highest, const QString &place, QString &error);

/// Reads text. A missing key gives an empty text when it may be missing.
std::optional<QString> readText(const QJsonObject &object, QLatin1String key, bool mayBeMissing,
                                const QString &place, QString &error);

/// Name of a JSON value's type, for messages.
QString jsonTypeName(const QJsonValue &value);

/// Whether a text holds a character that has no place in a name.
bool hasControlCharacter(const QString &text);

/// Whether a selector URL could spell the text: valid Unicode without control characters.
bool isNameText(const QString &text);

#endif
