// SPDX-License-Identifier: MIT
// Reads typed values out of JSON and says what is wrong when they are not there.
#ifndef JSONREADING_H
#define JSONREADING_H

#include <QJsonObject>
#include <QString>

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

/// Reads a whole number between limits.
///
/// @param place  what holds the key, for the message
/// @returns nothing, with an error, when the key is missing or holds anything else
std::optional<quint64> readWholeNumber(const QJsonObject &object, QLatin1String key, quint64 lowest,
                                       quint64 highest, const JsonPlace &place, QString &error);

/// Reads text. A missing key gives an empty text when it may be missing.
std::optional<QString> readText(const QJsonObject &object, QLatin1String key, bool mayBeMissing,
                                const JsonPlace &place, QString &error);

/// Whether a key is missing or holds text.
bool checkOptionalText(const QJsonObject &object, QLatin1String key, const JsonPlace &place,
                       QString &error);

/// Name of a JSON value's type, for messages.
QString jsonTypeName(const QJsonValue &value);

/// Whether a text holds a character that has no place in a name.
bool hasControlCharacter(const QString &text);

/// Whether a selector URL could spell the text: valid Unicode without control characters.
bool isNameText(const QString &text);

#endif
