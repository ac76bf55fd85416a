// SPDX-License-Identifier: MIT
// All module hosts of the process and the thread that they share.
#include "ModuleHosts.h"

#include "ModuleHost.h"

#include <QCoreApplication>
#include <QMutexLocker>

#include <utility>

std::atomic<bool> ModuleHosts::isRunning{false};

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
    qRemovePostRoutine(&ModuleHosts::endOfApplication);
    stop(); // the process ends without the end of its QCoreApplication
    for (const Entry &entry : std::as_const(entries)) {
        end(entry.host); // publishers that nobody destroyed
    }
}

void ModuleHosts::endOfApplication()
{
    instance().stop();
}

void ModuleHosts::stop()
{
    if (thread.isMissing()) {
        return;
    }
    const QMutexLocker lock(&mutex);
    thread.runAndWait([this] {
        for (const Entry &entry : std::as_const(entries)) {
            entry.host->stop();
        }
    });
    thread.stop();
    isRunning = false;
}

ModuleHost *ModuleHosts::acquire(const QString &moduleName, QString &error)
{
    const BusChoice choice = BusChoice::fromEnvironment();
    if (QCoreApplication::instance() == nullptr) {
        error = QStringLiteral("Cannot connect to %1: there is no QCoreApplication")
                    .arg(choice.label());
        return nullptr;
    }
    QString reason;
    if (!isRunning.load() && !BusThread::canStart(reason)) {
        error = QStringLiteral("Cannot connect to %1: %2").arg(choice.label(), reason);
        return nullptr;
    }
    if (instance().thread.isMissing()) {
        error = QStringLiteral("Cannot connect to %1: this process was forked after its parent had "
                               "published; fork first")
                    .arg(choice.label());
        return nullptr;
    }
    return instance().acquire(moduleName, choice, error);
}

ModuleHost *ModuleHosts::acquire(const QString &moduleName, const BusChoice &choice, QString &error)
{
    const QString key = moduleName + QChar::Null + choice.key();
    const QMutexLocker lock(&mutex);
    if (!thread.isRunning()) {
        thread.start();
        isRunning = true;
        qAddPostRoutine(&ModuleHosts::endOfApplication);
    }
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
