// SPDX-License-Identifier: MIT
// What a description says of one leaf, key by key.
#ifndef LEAFPROPERTIES_H
#define LEAFPROPERTIES_H

#include "JsonText.h"

#include <QJsonObject>
#include <QVariant>

/// Every key of a leaf as described. Shares the description's text and keeps it.
///
/// Threads: a value type that never changes; any.
class LeafProperties
{
public:
    LeafProperties() = default;

    /// @param object  an opened object of the text
    LeafProperties(const JsonTextPointer &text, const JsonItem &object)
        : text(text)
        , object(object)
    {
    }

    bool contains(const QString &key) const { return place(key) >= 0; }

    /// As QJsonValue::toVariant() gives it, but for whole numbers past an int64, which are
    /// qulonglong as long as that holds them; invalid without such a key.
    QVariant value(const QString &key) const;

    /// All of them, made anew for each call.
    QJsonObject toObject() const;

    /// Appends the text that clients get: all keys but "offset", which is not a property of the
    /// value, as QJsonDocument::toJson(Compact) spells them, but for whole numbers: those keep every
    /// digit, in arrays and objects as long as an int64 holds them.
    ///
    /// @param session  stands in it under that key, whatever the leaf has there
    void render(const QByteArray &session, QByteArray &bytes) const;

private:
    int place(const QString &key) const;
    JsonNode at(int place) const;
    const QVector<quint32> &keys() const { return text->shapes.at(int(object.size)).sorted; }

    JsonTextPointer text;
    JsonItem object{};
};

#endif
