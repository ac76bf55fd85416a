// SPDX-License-Identifier: MIT
// Where values stand in a buffer, layout 2: a header, then one slot for each leaf.
#ifndef SLOTLAYOUT_H
#define SLOTLAYOUT_H

#include "ValueType.h"

constexpr quint64 slotLayoutHeaderSize = 192; // bytes before the first slot
constexpr quint64 slotAlignment = 64; // a slot starts on a cache line and fills whole ones
constexpr quint32 slotSequenceSize = 8; // 32-bit sequence and padding
constexpr quint32 slotCopyHeaderSize = 16; // status, length, timestamp
constexpr quint32 slotPayloadAlignment = 8;

/// Bytes of one of a slot's two copies.
constexpr quint64 slotCopySize(quint64 payloadSize)
{
    return slotCopyHeaderSize
        + (payloadSize + slotPayloadAlignment - 1) / slotPayloadAlignment * slotPayloadAlignment;
}

/// Bytes of a leaf's slot.
///
/// @param capacity  of a string or bytes leaf; ignored for the other types
inline quint64 slotSize(ValueType type, quint32 capacity)
{
    const quint64 used = slotSequenceSize + 2 * slotCopySize(payloadSize(type, capacity));
    return (used + slotAlignment - 1) / slotAlignment * slotAlignment;
}

#endif
