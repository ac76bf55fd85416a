// SPDX-License-Identifier: MIT
// The header of a shared-memory buffer, layout 2: what never changes, and the lock of those who write.
#ifndef BUFFERLAYOUT_H
#define BUFFERLAYOUT_H

#include "SlotLayout.h"

#include <QtGlobal>

#include <cstddef>
#include <pthread.h>

constexpr char bufferMagic[8] = {'P', 'D', 'B', 'U', 'F', 'F', 'E', 'R'};
/// Of buffers and of the objects that tell of their publishers' lives.
constexpr quint32 bufferLayoutVersion = 2;

/// Word size and size of a lock: processes that disagree on either cannot share a buffer, and
/// refuse.
constexpr int bufferAbiWordShift = 8;
constexpr quint32 bufferAbiLockMask = 0xff;
constexpr quint32 bufferAbiTag
    = quint32(sizeof(void *)) << bufferAbiWordShift | quint32(sizeof(pthread_mutex_t));

/// Room for one process-shared lock, the same on every machine.
union BufferLock {
    pthread_mutex_t mutex;
    char room[56];
};

/// First bytes of every buffer. All but the lock are constant once the buffer has its name. Whoever
/// may write a value may write all of it, so nothing here tells whether the publisher lives: see
/// LifeRecord.
struct alignas(64) BufferHeader
{
    char magic[8];
    quint32 layoutVersion;
    quint32 headerSize;
    quint64 bufferSize;
    quint64 generation;
    quint32 slotCount;
    quint32 abiTag;
    quint32 reserved[22];
    BufferLock writersLock; // a line of its own: writing must not slow down whoever attaches
    char unused[8];
};

static_assert(sizeof(BufferHeader) == slotLayoutHeaderSize, "the header is 192 bytes everywhere");
static_assert(sizeof(BufferLock) == 56, "a lock fits into its room");
static_assert(offsetof(BufferHeader, layoutVersion) == 8 && offsetof(BufferHeader, headerSize) == 12
                  && offsetof(BufferHeader, bufferSize) == 16
                  && offsetof(BufferHeader, generation) == 24
                  && offsetof(BufferHeader, slotCount) == 32
                  && offsetof(BufferHeader, abiTag) == 36,
              "32-bit and 64-bit processes can read each other's header far enough to refuse it");
static_assert(offsetof(BufferHeader, writersLock) == 128, "the lock has a cache line");

#ifndef __GLIBC__
#error "the liveness test reads the lock word of glibc's mutex"
#endif

/// The word of a lock that the kernel marks when the owner dies. glibc keeps it at offset 0: 0 is
/// free, the low 30 bits are the owner's thread id, bit 30 says that the owner died.
inline quint32 lockWord(const BufferLock &lock)
{
    return __atomic_load_n(reinterpret_cast<const quint32 *>(lock.room), __ATOMIC_ACQUIRE);
}

/// Whether a liveness lock has a living owner.
inline bool isLockOwnerAlive(quint32 word)
{
    // Shifted, the bit of waiters is gone and that of a dead owner is the sign.
    return qint32(word << 1) > 0;
}

#endif
