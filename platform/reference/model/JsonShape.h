// SPDX-License-Identifier: MIT
// The keys of a JSON object, kept once for all objects that have the same ones.
#ifndef JSONSHAPE_H
#define JSONSHAPE_H

#include "DescriptionKeys.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVector>

#include <array>
#include <iterator>
#include <optional>

/// A key of any object of a text.
struct JsonKeyText
{
    QString name;
    QByteArray spelled; ///< as Qt's writer spells it, with quotes and colon
};
Q_DECLARE_TYPEINFO(JsonKeyText, Q_MOVABLE_TYPE);

/// Order of names: by code points, as Qt's reader orders the members of objects. QString's own order
/// is another one past U+FFFF.
bool isNameBefore(const QString &left, const QString &right);

/// The leaves of a description mostly have the same keys in the same order.
struct JsonShape
{
    QVector<quint32> keys; ///< numbers, as they follow one another in the text
    QVector<quint32> places; ///< for each of them the place of its value in the order of names
    QVector<quint32> sorted; ///< numbers in the order of names
    std::array<int, std::size(DescriptionKeys::all)> placesOfKnown{}; ///< by number; -1: not there
    int sessionPlace = 0; ///< where "session" stands among them, or would stand
};
Q_DECLARE_TYPEINFO(JsonShape, Q_MOVABLE_TYPE);

/// Numbers the keys of a text. Those of DescriptionKeys have the numbers that stand there.
class JsonKeyNumbers
{
public:
    JsonKeyNumbers();

    /// Number of a key by the bytes between its quotes, which must outlive this object.
    ///
    /// @returns nothing when Qt's writer would spell the name in another way: a name must not have
    ///          two numbers
    std::optional<quint32> numberOf(QLatin1String spelled, bool isPlain);

    const QVector<JsonKeyText> &texts() const { return all; }

private:
    QVector<JsonKeyText> all; // by number
    QHash<QLatin1String, quint32> numbers;
};

/// Shapes by their keys.
class JsonShapeNumbers
{
public:
    /// Number of the shape with these keys; nothing when one of them is there twice.
    std::optional<quint32> numberOf(const quint32 *keys, int count,
                                    const QVector<JsonKeyText> &texts);

    const QVector<JsonShape> &shapes() const { return all; }

private:
    QVector<JsonShape> all;
    QHash<QVector<quint32>, quint32> numbers;
};

#endif
