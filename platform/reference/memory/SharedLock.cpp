// SPDX-License-Identifier: MIT
// Robust process-shared locks: making them, checking them, taking one with a time limit.
#include "SharedLock.h"

#include "CrashPoint.h"

#include <cerrno>
#include <cstring>
#include <ctime>

namespace {

constexpr long lockLimitNanoseconds = 100'000'000;
constexpr long nanosecondsPerSecond = 1'000'000'000;

timespec lockDeadline()
{
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_nsec += lockLimitNanoseconds;
    if (deadline.tv_nsec >= nanosecondsPerSecond) {
        deadline.tv_nsec -= nanosecondsPerSecond;
        ++deadline.tv_sec;
    }
    return deadline;
}

int lockWithinLimit(BufferLock &lock)
{
    const timespec deadline = lockDeadline();
    return pthread_mutex_clocklock(&lock.mutex, CLOCK_MONOTONIC, &deadline);
}

// What glibc stores as the kind of our locks; asked from a fresh lock, so that no number is
// guessed.
int sharedLockKind()
{
    BufferLock lock{};
    return initializeSharedLock(lock) == 0 ? lock.mutex.__data.__kind : -1;
}

}

int initializeSharedLock(BufferLock &lock)
{
    pthread_mutexattr_t attributes;
    int error = pthread_mutexattr_init(&attributes);
    if (error != 0) {
        return error;
    }
    error = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    if (error == 0) {
        error = pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    }
    if (error == 0) {
        CRASH_POINT();
        error = pthread_mutex_init(&lock.mutex, &attributes);
    }
    pthread_mutexattr_destroy(&attributes);
    return error;
}

bool isSharedLock(const BufferLock &lock)
{
    static const int expected = sharedLockKind();
    return expected >= 0
        && __atomic_load_n(&lock.mutex.__data.__kind, __ATOMIC_RELAXED) == expected;
}

WritersLockGuard::WritersLockGuard(BufferLock &lock, Wait wait)
    : lock(lock)
{
    if (!isSharedLock(lock)) {
        return;
    }
    lastError = wait == NotAtAll ? pthread_mutex_trylock(&lock.mutex) : lockWithinLimit(lock);
    CRASH_POINT();
    if (lastError == EOWNERDEAD) {
        lastError = pthread_mutex_consistent(&lock.mutex);
        CRASH_POINT();
        if (lastError != 0) {
            pthread_mutex_unlock(&lock.mutex);
        }
    }
}

WritersLockGuard::~WritersLockGuard()
{
    if (lastError == 0) {
        CRASH_POINT();
        pthread_mutex_unlock(&lock.mutex);
        CRASH_POINT();
    }
}
