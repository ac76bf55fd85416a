// SPDX-License-Identifier: MIT
// The one connection that all clients of a process share, and what they know of their services.
#include "ClientBus.h"

#include "BusCall.h"
#include "BusErrors.h"
#include "BusLog.h"
#include "BusNames.h"

#include <QDBusArgument>
#include <QDeadlineTimer>

ClientBus::ClientBus(const BusChoice &choice)
    : link(choice, this)
    , losses(this)
{
    QObject::connect(&losses, &LossWatch::due, this, &ClientBus::handleLossDue);
    QObject::connect(&link, &BusLink::lost, this, &ClientBus::handleLost);
    QObject::connect(&link, &BusLink::restored, this, &ClientBus::handleRestored);
}

ClientBus::~ClientBus() = default;

void ClientBus::shutDown()
{
    link.close();
    losses.clear();
    const QMutexLocker lock(&mutex);
    table.busLost();
    changed.wakeAll();
}

bool ClientBus::waitUntilConnected(QString &error)
{
    if (link.isConnected()) {
        return true;
    }
    const int limit = callTimeLimit();
    QDeadlineTimer deadline(limit);
    QMutexLocker lock(&mutex);
    const quint64 before = attempts;
    if (!attemptUnderWay) {
        attemptUnderWay = true;
        QMetaObject::invokeMethod(
            this, [this] { connectInBusThread(); }, Qt::QueuedConnection);
    }
    while (attempts == before && !deadline.hasExpired()) {
        changed.wait(&mutex, deadline);
    }
    if (link.isConnected()) {
        return true;
    }
    const QString reason
        = attempts == before ? QStringLiteral("no answer within %1 ms").arg(limit) : lastError;
    error = QStringLiteral("Cannot connect to %1: %2").arg(link.bus().label(), reason);
    return false;
}

void ClientBus::connectInBusThread()
{
    QString error;
    const bool wasConnected = link.isConnected();
    if (link.open(error) && !wasConnected) {
        if (setUp(error)) {
            // Nobody watches at the first connection; later this one came before the link's own.
            watchers.tell({SystemChange::BusFound, {}});
        } else {
            link.close();
        }
    }
    const QMutexLocker lock(&mutex);
    lastError = error;
    ++attempts;
    attemptUnderWay = false;
    changed.wakeAll();
}

// No service stands in these subscriptions: QtDBus 5.15 would look its owner up with a call that
// blocks the thread of all its connections, and forget signals that come before the answer. The
// sender is compared by ServiceTable instead. No path or name either: the bus daemon allows 512
// match rules on a system bus connection, and an application may have more sources.
//
// Owners come last: a service that is seen to appear announces its instances next, and that must be
// heard. One that appears earlier is found by asking for its owner, and asked for its instances.
bool ClientBus::subscribe(QString &error)
{
    const QString any;
    const char *const signalSlot = SLOT(handleSignal(QDBusMessage));
    const bool done = link.subscribe({any, BusNames::processDescriptionInterface(),
                                      BusNames::processDescriptionChangedSignal()},
                                     this, signalSlot)
        && link.subscribe(
            {any, BusNames::processDescriptionInterface(), BusNames::propertyChangedSignal()}, this,
            signalSlot)
        && link.subscribe({any, BusNames::statusManagerInterface(), BusNames::startupReadySignal()},
                          this, signalSlot)
        && link.subscribe({BusNames::statusManagerPath(), BusNames::propertiesInterface(),
                           BusNames::propertiesChangedSignal()},
                          this, SLOT(handleProperties(QDBusMessage)))
        && (!registry || subscribeToRegistry())
        && link.subscribe({BusNames::daemonPath(), BusNames::daemonInterface(),
                           QStringLiteral("NameOwnerChanged")},
                          this, SLOT(handleOwnerChanged(QDBusMessage)));
    if (!done) {
        error = QStringLiteral("the bus connection refuses subscriptions");
    }
    return done;
}

void ClientBus::addListener(ServiceListener *listener)
{
    withTable([&](ServiceTable &present) {
        if (present.addListener(listener)) {
            QMetaObject::invokeMethod(
                this, [this, service = listener->service] { askOwner(service); },
                Qt::QueuedConnection);
        }
    });
}

bool ClientBus::hasOwner(const QString &service)
{
    if (isMissing()) {
        return false;
    }
    QDeadlineTimer deadline(callTimeLimit());
    QMutexLocker lock(&mutex);
    while (!table.isKnown(service) && link.isConnected() && !daemonSilent
           && !deadline.hasExpired()) {
        changed.wait(&mutex, deadline);
    }
    if (!table.isKnown(service) && link.isConnected()) {
        if (!daemonSilent) {
            qCWarning(busLog).noquote()
                << "No answer from" << link.bus().label() << "about" << service;
        }
        daemonSilent = true; // further services must not wait as long again
    }
    table.setGivenUp(service);
    return !table.ownerOf(service).isEmpty();
}

QDBusMessage ClientBus::ownerQuestion(const QString &service)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        BusNames::daemonService(), BusNames::daemonPath(), BusNames::daemonInterface(),
        QStringLiteral("GetNameOwner"));
    question << service;
    return question;
}

void ClientBus::askOwner(const QString &service)
{
    // Without a connection the question is asked when the bus is back.
    BusCall::send(link.connection(), ownerQuestion(service), noTimeLimit, this,
                  [this, service](const QDBusMessage &answer) { handleOwner(service, answer); });
}

void ClientBus::handleOwner(const QString &service, const QDBusMessage &answer)
{
    if (BusErrors::kindOf(answer) == BusErrors::Kind::Disconnected) {
        return;
    }
    const bool isOwned = answer.type() == QDBusMessage::ReplyMessage;
    const QString owner = answer.arguments().value(0).toString();
    const QMutexLocker lock(&mutex);
    daemonSilent = false;
    table.ownerAnswered(service, isOwned ? owner : QString());
    changed.wakeAll();
}

void ClientBus::handleOwnerChanged(const QDBusMessage &message)
{
    // Anyone may send a signal with this interface; only the bus daemon's own has this sender.
    const QList<QVariant> arguments = message.arguments();
    if (message.service() != BusNames::daemonService()
        || message.signature() != QLatin1String("sss")) {
        return;
    }
    const QString service = arguments.at(0).toString();
    const QString owner = arguments.at(2).toString();
    {
        const QMutexLocker lock(&mutex);
        table.ownerChanged(service, owner);
        changed.wakeAll();
    }
    tellOwner(service, owner);
}

void ClientBus::handleSignal(const QDBusMessage &message)
{
    const bool hasArgument = message.signature() == QLatin1String("s");
    if (!hasArgument && !message.signature().isEmpty()) {
        return;
    }
    const QString argument = hasArgument ? message.arguments().at(0).toString() : QString();
    const QMutexLocker lock(&mutex);
    table.signalReceived({message.service(), message.path(), message.member(), argument});
}

// Of all properties only one is of interest: the status manager's Ready. A change to true is told
// by a signal of its own.
void ClientBus::handleProperties(const QDBusMessage &message)
{
    if (message.signature() != QLatin1String("sa{sv}as")
        || message.arguments().at(0).toString() != BusNames::statusManagerInterface()) {
        return;
    }
    const auto properties = qdbus_cast<QVariantMap>(message.arguments().at(1));
    const QVariant ready = properties.value(BusNames::readyProperty());
    if (ready.type() == QVariant::Bool && !ready.toBool()) {
        const QMutexLocker lock(&mutex);
        table.signalReceived({message.service(), message.path(), message.member(), QString()});
    }
}

void ClientBus::handleLost()
{
    {
        const QMutexLocker lock(&mutex);
        table.busLost();
        daemonSilent = false;
        changed.wakeAll();
    }
    watchers.tell({SystemChange::BusLost, {}});
}

void ClientBus::handleRestored()
{
    QString error;
    if (!setUp(error)) {
        qCWarning(busLog).noquote()
            << "No announcements from" << link.bus().label() << "-" << error;
    }
    watchers.tell({SystemChange::BusFound, {}});
}

bool ClientBus::setUp(QString &error)
{
    const bool subscribed = subscribe(error);
    askForAll();
    return subscribed;
}

void ClientBus::askForAll()
{
    QStringList services;
    {
        const QMutexLocker lock(&mutex);
        table.busRestored();
        services = table.services();
    }
    for (const QString &service : qAsConst(services)) {
        askOwner(service);
    }
}
