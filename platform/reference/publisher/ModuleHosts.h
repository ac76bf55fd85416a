// SPDX-License-Identifier: MIT
// All module hosts of the process and the thread that they share.
#ifndef MODULEHOSTS_H
#define MODULEHOSTS_H

#include "BusSettings.h"
#include "BusThread.h"
#include "ServingConnections.h"

#include <QHash>
#include <QMutex>
#include <QString>

#include <atomic>
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
    static ModuleHost *acquire(const QString &moduleName, QString &error);
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
    ~ModuleHosts();
    static void endOfApplication();
    ModuleHost *acquire(const QString &moduleName, const BusChoice &choice, QString &error);
    void stop();
    void end(ModuleHost *host);

    static std::atomic<bool> isRunning; // the thread is

    // Held while a host starts or ends, so that nobody asks for a name that is just being given
    // back. The hosts' thread never takes it.
    QMutex mutex;
    QHash<QString, Entry> entries;
    ServingConnections connections; // of the hosts' thread
    BusThread thread;
};

#endif
