// SPDX-License-Identifier: MIT
// All client connections of the process, and the thread that they share.
#include "BusThread.h"
#include "ClientBus.h"

#include <QHash>

namespace {

// They end with the process's QCoreApplication and begin again with the next.
struct ClientBuses
{
    BusThread thread{"processdata-client", "connected", [this] {
                         SourceWatch::setHandler(nullptr);
                         for (const QSharedPointer<ClientBus> &bus : qAsConst(buses)) {
                             bus->shutDown();
                         }
                     }};
    QHash<QString, QSharedPointer<ClientBus>> buses; // guarded by the thread's lock
};

ClientBuses &all()
{
    static auto *const buses = new ClientBuses; // never destroyed: see BusThread
    return *buses;
}

// In a reading thread, which is not to wait: when the lock is not free, a later read will do.
void watchLost(const QSharedPointer<SourceWatch> &source)
{
    if (all().thread.isMissing()) {
        return;
    }
    if (const BusThread::Lock lock = all().thread.tryLock()) {
        for (const QSharedPointer<ClientBus> &bus : qAsConst(all().buses)) {
            bus->watchLost(source);
        }
    } else {
        source->forgetReads();
    }
}

QSharedPointer<ClientBus> find(const BusChoice &choice, QString &error)
{
    const BusThread::Lock lock = all().thread.start(choice, error);
    if (!lock) {
        return {};
    }
    SourceWatch::setHandler(&watchLost);
    QSharedPointer<ClientBus> &bus = all().buses[choice.key()];
    if (bus.isNull()) {
        bus.reset(new ClientBus(choice));
        all().thread.adopt(bus.data());
    }
    return bus;
}
}

QSharedPointer<ClientBus> ClientBus::instance(QString &error)
{
    QSharedPointer<ClientBus> bus = find(BusChoice::fromEnvironment(), error);
    if (!bus.isNull() && !bus->waitUntilConnected(error)) {
        bus.reset();
    }
    return bus;
}
