// SPDX-License-Identifier: MIT
// Robust process-shared locks: making them, checking them, taking one with a time limit.
#ifndef SHAREDLOCK_H
#define SHAREDLOCK_H

#include "BufferLayout.h"

#include <cerrno>

/// Prepares a lock in memory that several processes will map.
///
/// @returns 0 or an errno value
int initializeSharedLock(BufferLock &lock);

/// Whether bytes from elsewhere can be handed to the lock functions: the lock must be of the kind
/// that initializeSharedLock makes. On other kinds they abort or jump through pointers of the other
/// side.
bool isSharedLock(const BufferLock &lock);

/// Holds a writers' lock for one scope.
///
/// Waits 100 ms at most: a stopped owner costs a refusal, never a hang. A lock that a dead owner
/// left is made consistent: half-written copies of slots are not valid anyway, so nothing needs
/// mending.
class WritersLockGuard
{
public:
    enum Wait { WithinLimit, NotAtAll };

    explicit WritersLockGuard(BufferLock &lock, Wait wait = WithinLimit);
    ~WritersLockGuard();
    WritersLockGuard(const WritersLockGuard &) = delete;
    WritersLockGuard &operator=(const WritersLockGuard &) = delete;

    /// 0 when the lock is held, else the errno value that says why not: ETIMEDOUT after the limit,
    /// EBUSY where nothing was waited for.
    int error() const { return lastError; }

private:
    BufferLock &lock;
    int lastError = EINVAL;
};

#endif
