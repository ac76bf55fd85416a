// SPDX-License-Identifier: MIT
// All client connections of the process, and the thread that they share.
#include "BusThread.h"
#include "ClientBus.h"

#include <QCoreApplication>
#include <QHash>
#include <QMutexLocker>

#include <atomic>
#include <new>
#include <utility>

namespace {

// All client connections of the process. They end with its QCoreApplication and begin again with
// the next.
class ClientBuses
{
public:
    static ClientBuses &all()
    {
        static ClientBuses buses;
        return buses;
    }

    /// Asked before all(), which makes the thread's object.
    static bool canStart(QString &reason)
    {
        return isRunning.load() || BusThread::canStart(reason);
    }

    /// Whether this process was forked from one that had connections.
    bool areMissing() const { return thread.isMissing(); }

    QSharedPointer<ClientBus> find(const BusChoice &choice)
    {
        const QMutexLocker lock(&mutex);
        if (!thread.isRunning()) {
            thread.start();
            isRunning = true;
            SourceWatch::setHandler(&ClientBuses::watchLost);
            qAddPostRoutine(&ClientBuses::endOfApplication);
        }
        QSharedPointer<ClientBus> &bus = buses[choice.key()];
        if (bus.isNull()) {
            bus.reset(new ClientBus(choice));
            thread.adopt(bus.data());
        }
        return bus;
    }

private:
    ClientBuses()
        : thread(QStringLiteral("processdata-client"))
    {
    }

    ~ClientBuses()
    {
        qRemovePostRoutine(&ClientBuses::endOfApplication);
        stop(); // the process ends without the end of its QCoreApplication
        if (thread.isMissing()) {
            new (std::nothrow)
                QHash<QString, QSharedPointer<ClientBus>>(buses); // nobody is there to close them
        }
    }

    static void endOfApplication() { all().stop(); }

    // In a reading thread, which is not to wait: when the lock is not free, a later read will do.
    static void watchLost(const QSharedPointer<SourceWatch> &source)
    {
        ClientBuses &self = all();
        if (self.thread.isMissing()) {
            return;
        }
        if (self.mutex.tryLock()) {
            for (const QSharedPointer<ClientBus> &bus : std::as_const(self.buses)) {
                bus->watchLost(source);
            }
            self.mutex.unlock();
        } else {
            source->forgetReads();
        }
    }

    void stop()
    {
        if (thread.isMissing()) {
            return;
        }
        SourceWatch::setHandler(nullptr);
        const QMutexLocker lock(&mutex);
        thread.runAndWait([this] {
            for (const QSharedPointer<ClientBus> &bus : std::as_const(buses)) {
                bus->shutDown();
            }
        });
        thread.stop();
        isRunning = false;
    }

    static std::atomic<bool> isRunning;
    QMutex mutex;
    QHash<QString, QSharedPointer<ClientBus>> buses;
    BusThread thread; // destroyed before the buses
};

std::atomic<bool> ClientBuses::isRunning{false};
}

QSharedPointer<ClientBus> ClientBus::instance(QString &error)
{
    QSharedPointer<ClientBus> bus;
    const BusChoice choice = BusChoice::fromEnvironment();
    if (QCoreApplication::instance() == nullptr) {
        error = QStringLiteral("Cannot connect to %1: there is no QCoreApplication")
                    .arg(choice.label());
        return bus;
    }
    QString reason;
    if (!ClientBuses::canStart(reason)) {
        error = QStringLiteral("Cannot connect to %1: %2").arg(choice.label(), reason);
        return bus;
    }
    if (ClientBuses::all().areMissing()) {
        error = QStringLiteral("Cannot connect to %1: this process was forked after its parent had "
                               "connected; fork first")
                    .arg(choice.label());
        return bus;
    }
    bus = ClientBuses::all().find(choice);
    if (!bus->waitUntilConnected(error)) {
        bus.reset();
    }
    return bus;
}
