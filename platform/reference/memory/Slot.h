// SPDX-License-Identifier: MIT
// Reads and writes one slot of a buffer: a sequence and two copies, of which the sequence names the
// valid one.
#ifndef SLOT_H
#define SLOT_H

#include "CrashPoint.h"
#include "SlotLayout.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstring>

/// What stands before the payload in each copy.
struct SlotHead
{
    quint32 status; // ProcessDataDefinitions::ErrorTypes
    quint32 length; // bytes of payload; slotWithoutValue when nothing was published yet
    qint64 timestamp; // ns since the epoch, UTC
};

/// A copy of a slot whose payload is a number.
struct NumberCopy
{
    SlotHead head;
    char payload[slotPayloadAlignment];
};

/// Length of a copy that holds an error type and a time, but no value.
constexpr quint32 slotWithoutValue = 0xffffffff;

/// How often a copy is tried that writers keep changing. Well-behaved writers take a lock for each
/// change and cost a few tries; a hostile one must not hold up a reader.
constexpr int slotReadAttempts = 1000;

/// The unit in which copies are loaded and stored. All who share a buffer have the same word size.
using SlotWord = quintptr;

static_assert(sizeof(SlotHead) == slotCopyHeaderSize, "the head is laid out alike everywhere");
static_assert(sizeof(NumberCopy) % sizeof(SlotWord) == 0, "a copy is a whole number of words");
static_assert(__atomic_always_lock_free(sizeof(SlotWord), nullptr)
                  && __atomic_always_lock_free(sizeof(quint32), nullptr),
              "what several processes change must not need a lock of one of them");

inline quint32 slotSequence(const char *slot, int order)
{
    return __atomic_load_n(reinterpret_cast<const quint32 *>(slot), order);
}

/// Position in the slot of the copy that a sequence names.
inline quint64 slotCopyOffset(quint32 sequence, quint32 payloadSize)
{
    return slotSequenceSize + (sequence & 1U) * quint64(slotCopySize(payloadSize));
}

inline void loadSlotWords(const char *from, void *to, size_t count)
{
    const auto *source = reinterpret_cast<const SlotWord *>(from);
    for (size_t i = 0; i < count; ++i) {
        const SlotWord word = __atomic_load_n(source + i, __ATOMIC_RELAXED);
        std::memcpy(static_cast<char *>(to) + i * sizeof(SlotWord), &word, sizeof(SlotWord));
    }
}

/// The same for a number of words known beforehand: no loop remains.
template <size_t count> inline void loadSlotWords(const char *from, void *to)
{
    const auto *source = reinterpret_cast<const SlotWord *>(from);
    SlotWord words[count];
#pragma GCC unroll 8
    for (size_t i = 0; i < count; ++i) {
        words[i] = __atomic_load_n(source + i, __ATOMIC_RELAXED);
    }
    std::memcpy(to, words, sizeof(words));
}

inline void storeSlotWords(char *to, const void *from, size_t count)
{
    auto *target = reinterpret_cast<SlotWord *>(to);
    for (size_t i = 0; i < count; ++i) {
        SlotWord word;
        std::memcpy(&word, static_cast<const char *>(from) + i * sizeof(SlotWord),
                    sizeof(SlotWord));
        CRASH_POINT();
        __atomic_store_n(target + i, word, __ATOMIC_RELAXED);
    }
}

/// Asks for the memory of a slot that the reader of a list will want soon: slots stand in the order
/// of the description, as lists mostly do. An address past the buffer does no harm.
inline void prefetchSlotsBehind(const char *slot)
{
    constexpr quint64 slotsAhead = 8;
    __builtin_prefetch(slot + slotsAhead * slotAlignment);
}

/// Tries once to read a slot whose payload is a number. No lock, no allocation, no call.
///
/// @returns false when a writer changed the slot meanwhile
inline bool tryReadNumberSlot(const char *slot, NumberCopy &copy)
{
    const quint32 sequence = slotSequence(slot, __ATOMIC_ACQUIRE);
    loadSlotWords<sizeof(NumberCopy) / sizeof(SlotWord)>(
        slot + slotCopyOffset(sequence, slotPayloadAlignment), &copy);
    // Whoever saw a word of the next write also sees its sequence below.
    __atomic_thread_fence(__ATOMIC_ACQUIRE);
    return slotSequence(slot, __ATOMIC_RELAXED) == sequence;
}

/// Reads a slot whose payload is a number.
///
/// @returns false when writers changed the slot during every try
inline bool readNumberSlot(const char *slot, NumberCopy &copy)
{
    for (int attempt = 0; attempt < slotReadAttempts; ++attempt) {
        if (Q_LIKELY(tryReadNumberSlot(slot, copy))) {
            return true;
        }
    }
    return false;
}

/// Reads any slot.
///
/// @param payloadSize  of the slot as laid out; a greater length in the slot is cut down to it
/// @param payload      receives the bytes; empty when the slot holds no value
/// @returns false when writers changed the slot during every try
bool readSlot(const char *slot, quint32 payloadSize, SlotHead &head, QByteArray &payload);

/// Publishes a copy. Caller holds the writers' lock; readers see the old copy or the new one.
///
/// @param payload  head.length bytes, not more than payloadSize; ignored when there is no value
void writeSlot(char *slot, quint32 payloadSize, const SlotHead &head, const char *payload);

#endif
