// SPDX-License-Identifier: MIT
// All module hosts of the process and the thread that they share.
#ifndef MODULEHOSTS_H
#define MODULEHOSTS_H

#include "BusSettings.h"
#include "BusThread.h"
#include "ServiceEndpoint.h"

#include <QHash>
#include <QString>

#include <utility>

class ModuleHost;

/// Their thread ends with the process's QCoreApplication: publishers that outlive it serve no
/// longer.
///
/// Threads: any but the hosts'.
class ModuleHosts
{
public:
    static ModuleHosts &instance();

    /// Finds or makes and starts the module's host on the bus that the environment chooses; null
    /// with the reason on failure. Each success takes one release().
    ModuleHost *acquire(const QString &moduleName, QString &error);
    void release(ModuleHost *host);

    template <typename Function> void runAndWait(Function &&function)
    {
        thread.runAndWait(std::forward<Function>(function));
    }

private:
    struct Entry
    {
        ModuleHost *host = nullptr;
        int users = 0;
    };

    ModuleHosts();
    void end(ModuleHost *host);

    BusThread thread;
    // Guarded by the thread's lock, which is held while a host starts or ends, so that nobody asks
    // for a name that is just being given back.
    QHash<QString, Entry> entries;
    ServingConnections connections; // of the hosts' thread
};

#endif
