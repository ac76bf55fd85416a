// SPDX-License-Identifier: MIT
// What tells whether a buffer's publisher lives: an object of its own, which only its publisher may write.
#ifndef LIFERECORD_H
#define LIFERECORD_H

#include "BufferLayout.h"
#include "CrashPoint.h"

#include <cstring>

/// Life of a buffer; the numbers are stored in its record.
enum BufferState : quint32 {
    BufferBuilding = 1, // the buffer has no name yet: nobody attaches
    BufferActive = 2,
    BufferRetired = 3, // given up by its publisher: the last values stay readable
};

constexpr char lifeMagic[8] = {'P', 'D', 'B', 'U', 'F', 'L', 'I', 'F'};
constexpr size_t lifeNameRoom = 256; // NAME_MAX and a zero byte

/// Stands beside each buffer, in a file whose name ends in lifeNameEnd. Its group may read it and
/// nobody but its publisher's user may write it: who forges values cannot forge a death.
///
/// Constant once it has its name, but for the second line.
struct alignas(64) LifeRecord
{
    char magic[8];
    quint32 layoutVersion;
    quint32 recordSize;
    quint64 generation;
    quint32 abiTag;
    quint32 reserved[9];

    quint32 state; // BufferState; with the lock's word all that a read looks at: one line
    quint32 revision; // of the description and its properties: one more at each announced change
    BufferLock lock; // held by the publisher for as long as it lives

    char bufferName[lifeNameRoom]; // of the file: a record under another's name is not believed
};

static_assert(offsetof(LifeRecord, layoutVersion) == 8 && offsetof(LifeRecord, recordSize) == 12
                  && offsetof(LifeRecord, generation) == 16 && offsetof(LifeRecord, abiTag) == 24
                  && offsetof(LifeRecord, state) == 64 && offsetof(LifeRecord, revision) == 68
                  && offsetof(LifeRecord, lock) == 72 && offsetof(LifeRecord, bufferName) == 128
                  && sizeof(LifeRecord) == 384,
              "32-bit and 64-bit processes can tell each other's life and death");

inline quint32 bufferState(const LifeRecord &life)
{
    return __atomic_load_n(&life.state, __ATOMIC_ACQUIRE);
}

inline void setBufferState(LifeRecord &life, BufferState state)
{
    CRASH_POINT();
    __atomic_store_n(&life.state, quint32(state), __ATOMIC_RELEASE);
}

/// Whether a running publisher stands behind the buffer. Two loads, no call.
inline bool isBufferLive(const LifeRecord &life)
{
    return bufferState(life) == BufferActive && isLockOwnerAlive(lockWord(life.lock));
}

/// Differs from an earlier answer when the publisher has announced a change in between. Whoever sees
/// a number is given the description that belongs to it, or a newer one.
inline quint32 bufferRevision(const LifeRecord &life)
{
    return __atomic_load_n(&life.revision, __ATOMIC_ACQUIRE);
}

/// What a record says of a buffer that its publisher neither gave up nor changed.
struct alignas(quint64) LifeMark
{
    quint32 state;
    quint32 revision;
};

/// Whether state and revision are still those. One load where the processor has wide ones, else two.
inline bool isLifeAsMarked(const LifeRecord &life, const LifeMark &mark)
{
    if constexpr (sizeof(void *) < sizeof(quint64)) {
        return bufferState(life) == mark.state && bufferRevision(life) == mark.revision;
    }
    using Both = quint64 __attribute__((may_alias));
    const void *both = &life.state;
    Both expected = 0;
    memcpy(&expected, &mark, sizeof(expected));
    return __atomic_load_n(static_cast<const Both *>(both), __ATOMIC_ACQUIRE) == expected;
}

#endif
