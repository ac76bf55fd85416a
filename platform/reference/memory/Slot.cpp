// SPDX-License-Identifier: MIT
// Reads and writes one slot of a buffer: the parts that need no speed.
#include "Slot.h"

#include "CrashPoint.h"

#include <algorithm>

namespace {

constexpr size_t wordSize = sizeof(SlotWord);
constexpr size_t headWords = sizeof(SlotHead) / wordSize;

// Caller checks the sequence afterwards: what was loaded may belong to two writes.
void loadCopy(const char *copy, quint32 payloadSize, SlotHead &head, QByteArray &payload)
{
    loadSlotWords(copy, &head, headWords);
    if (head.length == slotWithoutValue) {
        payload.resize(0);
        return;
    }
    head.length = std::min(head.length, payloadSize);
    const size_t words = (head.length + wordSize - 1) / wordSize;
    payload.resize(int(words * wordSize));
    loadSlotWords(copy + sizeof(SlotHead), payload.data(), words);
    payload.resize(int(head.length));
}

void storePayload(char *target, const char *payload, quint32 length)
{
    const size_t words = length / wordSize;
    const size_t rest = length % wordSize;
    storeSlotWords(target, payload, words);
    if (rest != 0) {
        SlotWord last = 0;
        std::memcpy(&last, payload + words * wordSize, rest);
        storeSlotWords(target + words * wordSize, &last, 1);
    }
}

}

bool readSlot(const char *slot, quint32 payloadSize, SlotHead &head, QByteArray &payload)
{
    for (int attempt = 0; attempt < slotReadAttempts; ++attempt) {
        const quint32 sequence = slotSequence(slot, __ATOMIC_ACQUIRE);
        loadCopy(slot + slotCopyOffset(sequence, payloadSize), payloadSize, head, payload);
        __atomic_thread_fence(__ATOMIC_ACQUIRE);
        if (slotSequence(slot, __ATOMIC_RELAXED) == sequence) {
            return true;
        }
    }
    return false;
}

void writeSlot(char *slot, quint32 payloadSize, const SlotHead &head, const char *payload)
{
    const quint32 next = slotSequence(slot, __ATOMIC_RELAXED) + 1;
    // The words below must not be seen before the sequence that the previous writer stored: a
    // reader would take them for the copy that is still valid.
    __atomic_thread_fence(__ATOMIC_RELEASE);
    char *copy = slot + slotCopyOffset(next, payloadSize);
    storeSlotWords(copy, &head, headWords);
    if (head.length != slotWithoutValue) {
        storePayload(copy + sizeof(SlotHead), payload, head.length);
    }
    CRASH_POINT();
    __atomic_store_n(reinterpret_cast<quint32 *>(slot), next, __ATOMIC_RELEASE);
    CRASH_POINT();
}
