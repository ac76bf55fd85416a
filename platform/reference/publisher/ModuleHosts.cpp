// SPDX-License-Identifier: MIT
// All module hosts of the process and the thread that they share.
#include "ModuleHosts.h"

#include "ModuleHost.h"

ModuleHosts &ModuleHosts::instance()
{
    static auto *const hosts = new ModuleHosts; // never destroyed: see BusThread
    return *hosts;
}

ModuleHosts::ModuleHosts()
    : thread("processdata-publisher", "published", [this] {
        for (const Entry &entry : qAsConst(entries)) {
            entry.host->stop();
        }
    })
{
}

ModuleHost *ModuleHosts::acquire(const QString &moduleName, QString &error)
{
    const BusChoice choice = BusChoice::fromEnvironment();
    const BusThread::Lock lock = thread.start(choice, error);
    if (!lock) {
        return nullptr;
    }
    const QString key = moduleName + QChar::Null + choice.key();
    const auto found = entries.find(key);
    if (found != entries.end()) {
        ++found->users;
        return found->host;
    }
    auto *const host = new ModuleHost(choice, moduleName, connections);
    thread.adopt(host);
    bool started = false;
    thread.runAndWait([&] { started = host->start(error); });
    if (!started) {
        end(host);
        return nullptr;
    }
    entries.insert(key, Entry{host, 1});
    return host;
}

void ModuleHosts::release(ModuleHost *host)
{
    if (thread.isMissing()) {
        return;
    }
    const BusThread::Lock lock = thread.lock();
    for (auto it = entries.begin(); it != entries.end(); ++it) {
        if (it->host == host) {
            if (--it->users == 0) {
                entries.erase(it);
                end(host);
            }
            return;
        }
    }
}

void ModuleHosts::end(ModuleHost *host)
{
    thread.runAndWait([host] {
        host->stop();
        delete host;
    });
}
