// SPDX-License-Identifier: MIT
// All module hosts of the process and the thread that they share.
#include "ModuleHosts.h"

#include "BusSettings.h"
#include "ModuleHost.h"

#include <QMutexLocker>

ModuleHosts &ModuleHosts::instance()
{
    static ModuleHosts hosts;
    return hosts;
}

ModuleHosts::ModuleHosts()
    : thread(QStringLiteral("processdata-publisher"))
{
}

ModuleHosts::~ModuleHosts()
{
    for (const Entry &entry : std::as_const(entries)) {
        end(entry.host); // publishers that nobody destroyed
    }
}

ModuleHost *ModuleHosts::acquire(const QString &moduleName, QString &error)
{
    const BusChoice choice = BusChoice::fromEnvironment();
    const QString key = moduleName + QChar::Null + choice.key();
    const QMutexLocker lock(&mutex);
    const auto found = entries.find(key);
    if (found != entries.end()) {
        ++found->users;
        return found->host;
    }
    auto *const host = new ModuleHost(choice, moduleName);
    host->moveToThread(thread.thread());
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
    const QMutexLocker lock(&mutex);
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
