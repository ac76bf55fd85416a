// SPDX-License-Identifier: MIT
// Shows ThreadSanitizer what it does not see: locks of Qt's library and a lock of glibc's.
//
// Defined in the executable, these come before the libraries' own for all objects of this build.
// With RACES_WITHOUT_LOCK set no QMutex is taken and none is told of: what they protect must then be
// reported.
#include <QMutex>
#include <QString>

#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>
#include <pthread.h>
#include <sanitizer/tsan_interface.h>

namespace {

template <typename Function> Function next(const char *symbol)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, symbol));
}

bool withoutLock()
{
    static const bool without = std::getenv("RACES_WITHOUT_LOCK") != nullptr;
    return without;
}

using MutexOperation = void (*)(QMutex *);
using TimedLock = int (*)(pthread_mutex_t *, clockid_t, const timespec *);

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto lockOfQt = next<MutexOperation>("_ZN6QMutex4lockEv");
    if (withoutLock()) {
        return;
    }
    __tsan_mutex_pre_lock(this, __tsan_mutex_not_static);
    lockOfQt(this);
    __tsan_mutex_post_lock(this, __tsan_mutex_not_static, 0);
}

void QMutex::unlock() noexcept
{
    static const auto unlockOfQt = next<MutexOperation>("_ZN6QMutex6unlockEv");
    if (withoutLock()) {
        return;
    }
    __tsan_mutex_pre_unlock(this, 0);
    unlockOfQt(this);
    __tsan_mutex_post_unlock(this, 0);
}

// As Qt 5.15 has it, compiled here: the text's count of references, by which the last thread that
// used it is waited for, would else be dropped unseen before the text is freed.
QString &QString::operator=(const QString &other) noexcept
{
    other.d->ref.ref();
    if (!d->ref.deref()) {
        Data::deallocate(d);
    }
    d = other.d;
    return *this;
}

// ThreadSanitizer of g++ 12 knows pthread_mutex_unlock, but not this way to lock.
int pthread_mutex_clocklock(pthread_mutex_t *mutex, clockid_t clock, const timespec *limit) noexcept
{
    static const auto lockOfGlibc = next<TimedLock>("pthread_mutex_clocklock");
    __tsan_mutex_pre_lock(mutex, __tsan_mutex_not_static | __tsan_mutex_try_lock);
    const int error = lockOfGlibc(mutex, clock, limit);
    const bool taken = error == 0 || error == EOWNERDEAD;
    __tsan_mutex_post_lock(mutex,
                           __tsan_mutex_not_static | __tsan_mutex_try_lock
                               | (taken ? 0U : __tsan_mutex_try_lock_failed),
                           0);
    return error;
}
