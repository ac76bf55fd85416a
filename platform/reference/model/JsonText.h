// SPDX-License-Identifier: MIT
// A JSON text that was gone over once, and the values in it.
#ifndef JSONTEXT_H
#define JSONTEXT_H

#include "JsonItem.h"
#include "JsonKey.h"
#include "JsonShape.h"

#include <QByteArray>
#include <QExplicitlySharedDataPointer>
#include <QJsonValue>
#include <QSharedData>
#include <QString>
#include <QVector>

/// The text of one description and where its values stand. Immutable once it was scanned.
///
/// QJsonDocument keeps the values of each object apart, about 1 kB for a leaf; here they take 8
/// bytes each beside the text. What is not asked for is never made.
struct JsonText : QSharedData
{
    QByteArray text;
    QVector<JsonItem> items; ///< of opened arrays in their order, of objects in that of their names
    QVector<JsonKeyText> keys; ///< by number
    QVector<JsonShape> shapes; ///< by number
    JsonItem root{}; ///< an opened object
};

using JsonTextPointer = QExplicitlySharedDataPointer<const JsonText>;

/// One value of a text. Must not outlive it.
class JsonNode
{
public:
    /// No value at all.
    JsonNode() = default;
    JsonNode(const JsonText &whole, const JsonItem &item)
        : whole(&whole)
        , item(item)
    {
    }

    const JsonItem &place() const { return item; }
    JsonKind kind() const { return item.kind; }
    bool isUndefined() const { return item.kind == JsonKind::Undefined; }

    /// Whether the value is a text or a number that may be rendered as it is spelled: as Qt would
    /// write it, but for the digits of whole numbers, all of which are kept.
    bool isPlain() const { return item.plain != 0; }

    /// The bytes of the value, which must not be undefined; of a text without its quotes.
    QLatin1String bytes() const
    {
        Q_ASSERT(whole != nullptr);
        return QLatin1String(whole->text.constData() + item.begin, int(item.size));
    }

    /// Text; empty for any other value.
    QString toText() const;

    /// Whether this is the word true.
    bool isTrue() const { return item.kind == JsonKind::Bool && bytes().size() == 4; }

    /// Any value but an opened one, as Qt's reader understands it.
    QJsonValue toJsonValue() const;

    /// Member of an opened object, undefined when it has none of that key.
    JsonNode value(const JsonKey &key) const
    {
        Q_ASSERT(whole != nullptr);
        const int place = whole->shapes.at(int(item.size)).placesOfKnown[key.number];
        return place < 0 ? JsonNode() : JsonNode(*whole, whole->items.at(int(item.begin) + place));
    }
    bool contains(const JsonKey &key) const { return !value(key).isUndefined(); }

    /// Entries of an opened array.
    int size() const { return int(item.size); }
    JsonNode at(int index) const
    {
        Q_ASSERT(whole != nullptr);
        return {*whole, whole->items.at(int(item.begin) + index)};
    }

private:
    const JsonText *whole = nullptr;
    JsonItem item{};
};

#endif
