// SPDX-License-Identifier: MIT
// Who hears of the system as a whole.
#ifndef SYSTEMWATCHERS_H
#define SYSTEMWATCHERS_H

#include "SystemChanges.h"

#include <QMap>
#include <QMutex>

/// Threads: any; the functions are called in the one that tells.
class SystemWatchers
{
public:
    using Hear = std::function<void(const SystemChange &)>;

    /// @param watcher  tells it from others
    void add(const void *watcher, const Hear &hear);

    /// When it returns, no call of the watcher's function runs, and none comes.
    void remove(const void *watcher);

    void tell(const SystemChange &change);

private:
    QMutex mutex; // held while functions are called: they only queue
    QMap<const void *, Hear> watchers;
};

#endif
