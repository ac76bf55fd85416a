// SPDX-License-Identifier: MIT
// One value in a scanned JSON text.
#ifndef JSONITEM_H
#define JSONITEM_H

#include <QtGlobal>

enum class JsonKind : quint32 { Undefined, Null, Bool, Number, String, Array, Object };

/// Tells where a value stands. Most are never more than that: they stay in the text.
struct JsonItem
{
    quint32 begin; ///< byte in the text; of an opened array or object its first item
    quint32 size : 28; ///< bytes in the text; of an opened array its items, of an object its shape
    JsonKind kind : 3;
    quint32 plain : 1; ///< of text or a number: may be rendered as it is spelled
};
Q_DECLARE_TYPEINFO(JsonItem, Q_PRIMITIVE_TYPE);

constexpr quint32 maximumJsonItemSize = (1U << 28U) - 1; // bytes

static_assert(sizeof(JsonItem) == 8, "a description has some for each leaf");

#endif
