// SPDX-License-Identifier: MIT
// Who hears of the system as a whole.
#include "SystemWatchers.h"

#include <QMutexLocker>

void SystemWatchers::add(const void *watcher, const Hear &hear)
{
    const QMutexLocker lock(&mutex);
    watchers.insert(watcher, hear);
}

void SystemWatchers::remove(const void *watcher)
{
    const QMutexLocker lock(&mutex);
    watchers.remove(watcher);
}

void SystemWatchers::tell(const SystemChange &change)
{
    const QMutexLocker lock(&mutex);
    for (const Hear &hear : qAsConst(watchers)) {
        hear(change);
    }
}
