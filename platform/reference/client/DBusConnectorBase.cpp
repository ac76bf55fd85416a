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

DBusConnectorBasePrivate::DBusConnectorBasePrivate(QSharedPointer<ClientBus> bus, QString service,
                                                   QString path)
    : bus(std::move(bus))
    , service(std::move(service))
    , path(std::move(path))
{
}

DBusConnectorBasePrivate::~DBusConnectorBasePrivate() = default;

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
    bus->addListener(service, path, this);
}

void DBusConnectorBasePrivate::stop()
{
    bus->removeListener(path, this);
}

void DBusConnectorBasePrivate::servicePresent(Presence presence, const QString &owner)
{
    Event event;
    event.presence = presence;
    event.argument = owner;
    enqueue(event);
}

void DBusConnectorBasePrivate::serviceAnswersAgain()
{
    Event event;
    event.kind = Event::Kind::AnswersAgain;
    enqueue(event);
}

bool DBusConnectorBasePrivate::hasAskedFor(const QString &argument) const
{
    Q_UNUSED(argument)
    return false; // it asks for nothing that has a name
}

void DBusConnectorBasePrivate::signalReceived(const QString &member, const QString &argument)
{
    Event event;
    event.kind = Event::Kind::Signal;
    event.member = member;
    event.argument = argument;
    enqueue(event);
}

// A signal that waits for delivery already says all that an equal one after it would say. One of
// another kind in between keeps both, so that the last kind reported is the last kind announced.
bool DBusConnectorBasePrivate::isQueuedAlready(const Event &signal)
{
    QString &last = lastSignals[signal.argument];
    return std::exchange(last, signal.member) == signal.member;
}

void DBusConnectorBasePrivate::enqueue(const Event &event)
{
    const QMutexLocker lock(&mutex);
    if (event.kind != Event::Kind::Signal) {
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
    QVector<Event> events;
    {
        const QMutexLocker lock(&mutex);
        events = std::exchange(queue, QVector<Event>());
        lastSignals.clear();
    }
    const QPointer<QObject> alive(turn);
    for (const Event &event : std::as_const(events)) {
        handle(event);
        if (alive.isNull()) {
            return; // what it was told made its owner release it, and this object with it
        }
    }
}

void DBusConnectorBasePrivate::handle(const Event &event)
{
    switch (event.kind) {
    case Event::Kind::Present:
        handlePresence(event.presence, event.argument);
        break;
    case Event::Kind::AnswersAgain:
        handleAnswersAgain();
        break;
    case Event::Kind::Signal:
        handleSignal(event.member, event.argument);
        break;
    }
}
