// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#ifndef JSONREADING_H
#define JSONREADING_H

#include "JsonText.h"

#include <QString>
#include <QVariant>

#include <optional>

/// What holds a key, for messages: becomes text only when something is wrong.
class JsonPlace
{
public:
    JsonPlace(QLatin1String before, const QString &name = QString(),
              QLatin1String after = QLatin1String())
        : before(before)
        , name(name)
        , after(after)
    {
    }

    QString text() const { return before + name + after; }

private:
    const QLatin1String before;
    const QString name;
    const QLatin1String after;
};

/// The whole number that the value spells in digits alone; nothing for any other value, or for one
/// that is not an int64.
std::optional<qint64> signedWholeNumber(const JsonNode &value);

/// A number with every digit that a type holds: qlonglong, qulonglong past its range, else double.
QVariant numberOf(const JsonNode &value);

/// Reads a whole number between limits.
///
/// @param object  an opened object
/// @param place   what holds the key, for the message
/// @returns nothing, with an error, when the key is missing or holds anything else
std::optional<quint64> readWholeNumber(const JsonNode &object, const JsonKey &key, quint64 lowest,
                                       quint64 highest, const JsonPlace &place, QString &error);

/// Reads text. A missing key gives an empty text when it may be missing.
std::optional<QString> readText(const JsonNode &object, const JsonKey &key, bool mayBeMissing,
                                const JsonPlace &place, QString &error);

/// Whether a key holds text, or is missing when it may be.
bool checkText(const JsonNode &value, const JsonKey &key, bool mayBeMissing, const JsonPlace &place,
               QString &error);

/// Name of a JSON value's type, for messages.
QString jsonTypeName(JsonKind kind);

#endif
