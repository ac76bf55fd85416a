// SPDX-License-Identifier: MIT
// JSON with whole numbers that QJsonValue would round.
#ifndef EXACTJSON_H
#define EXACTJSON_H

#include <QByteArray>
#include <QJsonObject>

/// Reads an object in which whole numbers beyond ±9007199254740991 become strings of their digits,
/// as in the JSON that the tools print; empty when the text is not an object.
QJsonObject exactObject(const QByteArray &json);

/// Reads an object that exactText() writes again: the same numbers become strings that no other text
/// is taken for.
QJsonObject rewritableObject(const QByteArray &json);

/// Indented text of an object of rewritableObject(), changed or not, with each number as it was.
QByteArray exactText(const QJsonObject &object);

#endif
