// SPDX-License-Identifier: MIT
// What all connectors share: their service on the bus, and what it said, queued into their thread.
#include "DBusConnectorBase.h"

#include "BusLog.h"
#include "DBusConnectorBasePrivate.h"

#include <QMutexLocker>
#include <QPointer>
#include <QTimer>

#include <utility>

DBusConnectorBase::DBusConnectorBase(DBusConnectorBasePrivate *state)
    : d(state)
{
    d->start(this);
}

DBusConnectorBase::~DBusConnectorBase()
{
    d->stop(); // nothing is posted to this object from here on
}

bool DBusConnectorBase::isDBusInterfaceValid() const
{
    return d->bus->hasOwner(d->service);
}

DBusConnectorBasePrivate::DBusConnectorBasePrivate(QSharedPointer<ClientBus> bus,
                                                   const QString &service, const QString &path)
    : ServiceListener(service, path)
    , bus(std::move(bus))
{
}

QSharedPointer<ClientBus> DBusConnectorBasePrivate::findBus()
{
    QString error;
    QSharedPointer<ClientBus> bus = ClientBus::instance(error);
    if (bus.isNull()) {
        qCWarning(busLog).noquote() << error;
    }
    return bus;
}

void DBusConnectorBasePrivate::start(QObject *owner)
{
    turn = new QTimer(owner);
    turn->setSingleShot(true);
    turn->setInterval(0);
    QObject::connect(turn, &QTimer::timeout, owner, [this] { deliver(); });
    bus->addListener(this);
}

void DBusConnectorBasePrivate::stop()
{
    QVector<PreparedDescriptionPointer> expected; // freed when the table's lock is free again
    bus->withTable([&](ServiceTable &table) { expected = table.removeListener(this); });
}

// A signal that waits for delivery already says all that an equal one after it would say. One of
// another kind in between keeps both, so that the last kind reported is the last kind announced.
bool DBusConnectorBasePrivate::isQueuedAlready(const ServiceEvent &signal)
{
    QString &last = lastSignals[signal.argument];
    return std::exchange(last, signal.member) == signal.member;
}

void DBusConnectorBasePrivate::hear(const ServiceEvent &event)
{
    const QMutexLocker lock(&mutex);
    if (event.kind != ServiceEvent::Kind::Signal) {
        lastSignals.clear();
    } else if (isQueuedAlready(event)) {
        return;
    }
    if (queue.isEmpty()) {
        // Not at once: Qt handles what is posted while it handles what was posted, so a storm could
        // keep the client's event loop from everything else. A timer waits for the next turn.
        QMetaObject::invokeMethod(
            turn, [this] { turn->start(); }, Qt::QueuedConnection);
    }
    queue += event;
}

void DBusConnectorBasePrivate::deliver()
{
    QVector<ServiceEvent> events;
    {
        const QMutexLocker lock(&mutex);
        events = std::exchange(queue, {});
        lastSignals.clear();
    }
    const QPointer<QObject> alive(turn);
    for (const ServiceEvent &event : std::as_const(events)) {
        handle(event);
        if (alive.isNull()) {
            return; // what it was told made its owner release it, and this object with it
        }
    }
}
