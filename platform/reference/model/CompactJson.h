// SPDX-License-Identifier: MIT
// Writes JSON as compact text without losing a digit.
#ifndef COMPACTJSON_H
#define COMPACTJSON_H

#include <QByteArray>
#include <QJsonObject>

/// Text that is read as an object equal to the one given.
///
/// Unlike QJsonDocument::toJson(Compact), which rounds whole numbers past 2^53; of all else the text
/// is the same.
QByteArray compactJson(const QJsonObject &object);

/// The same of one value, as it is shown: with each byte-order mark as QJsonDocument writes it.
QByteArray renderedJson(const QJsonValue &value);

#endif
