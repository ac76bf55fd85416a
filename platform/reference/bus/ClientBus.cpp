// SPDX-License-Identifier: MIT
// The one connection that all clients of a process share, and what they know of their services.
#include "ClientBus.h"

#include "BusCall.h"
#include "BusErrors.h"
#include "BusLog.h"
#include "BusNames.h"
#include "BusThread.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <QMutexLocker>
#include <QTimer>

#include <utility>

namespace {

// A probe whose answer the bus daemon gave up on is sent again after this time. Milliseconds.
constexpr int probeRetryDelay = 1000;

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

    QSharedPointer<ClientBus> find(const BusChoice &choice)
    {
        const QMutexLocker lock(&mutex);
        if (!thread.isRunning()) {
            thread.start();
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
    }

    static void endOfApplication() { all().stop(); }

    void stop()
    {
        const QMutexLocker lock(&mutex);
        thread.runAndWait([this] {
            for (const QSharedPointer<ClientBus> &bus : std::as_const(buses)) {
                bus->shutDown();
            }
        });
        thread.stop();
    }

    QMutex mutex;
    QHash<QString, QSharedPointer<ClientBus>> buses;
    BusThread thread; // destroyed before the buses
};
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
    bus = ClientBuses::all().find(choice);
    if (!bus->waitUntilConnected(error)) {
        bus.reset();
    }
    return bus;
}

ClientBus::ClientBus(const BusChoice &choice)
    : link(choice, this)
{
    QObject::connect(&link, &BusLink::lost, this, &ClientBus::handleLost);
    QObject::connect(&link, &BusLink::restored, this, &ClientBus::handleRestored);
}

ClientBus::~ClientBus() = default;

void ClientBus::shutDown()
{
    link.close();
    qDeleteAll(findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly));
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
    if (link.open(error) && !wasConnected && !setUp(error)) {
        link.close();
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
bool ClientBus::subscribe(QString &error)
{
    QDBusConnection connection = link.connection();
    const QString any;
    const bool done = connection.connect(any, BusNames::daemonPath(), BusNames::daemonInterface(),
                                         QStringLiteral("NameOwnerChanged"), this,
                                         SLOT(handleOwnerChanged(QDBusMessage)))
        && connection.connect(any, any, BusNames::processDescriptionInterface(),
                              BusNames::processDescriptionChangedSignal(), this,
                              SLOT(handleSignal(QDBusMessage)))
        && connection.connect(any, any, BusNames::processDescriptionInterface(),
                              BusNames::propertyChangedSignal(), this,
                              SLOT(handleSignal(QDBusMessage)))
        && connection.connect(any, any, BusNames::statusManagerInterface(),
                              BusNames::startupReadySignal(), this,
                              SLOT(handleSignal(QDBusMessage)))
        && connection.connect(any, BusNames::statusManagerPath(), BusNames::propertiesInterface(),
                              BusNames::propertiesChangedSignal(), this,
                              SLOT(handleProperties(QDBusMessage)));
    if (!done) {
        error = QStringLiteral("the bus connection refuses subscriptions");
    }
    return done;
}

void ClientBus::addListener(const QString &service, const QString &path, ServiceListener *listener)
{
    const QMutexLocker lock(&mutex);
    if (table.addListener(service, path, listener)) {
        QMetaObject::invokeMethod(
            this, [this, service] { askOwner(service); }, Qt::QueuedConnection);
    }
}

void ClientBus::removeListener(const QString &path, ServiceListener *listener)
{
    const QMutexLocker lock(&mutex);
    table.removeListener(path, listener);
}

bool ClientBus::hasOwner(const QString &service)
{
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
    return table.hasOwner(service);
}

QDBusMessage ClientBus::call(const QDBusMessage &call, bool &missed)
{
    const int limit = callTimeLimit();
    {
        const QMutexLocker lock(&mutex);
        missed = table.isHung(call.service());
    }
    if (missed) {
        return call.createErrorReply(
            QDBusError::NoReply,
            QStringLiteral("the service did not answer an earlier call in time and has been silent "
                           "since"));
    }
    QDBusMessage request = call;
    request.setAutoStartService(false);
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage answer = BusCall::wait(link.connection(), request, limit);
    missed = noteTimeout(call, answer, timer.elapsed(), limit);
    return answer;
}

bool ClientBus::noteTimeout(const QDBusMessage &call, const QDBusMessage &answer,
                            qint64 milliseconds, int limit)
{
    // The same error comes at once when the service dies with the call: that is no hanging.
    // QtDBus measures with coarse timers, which may be 5 % early.
    constexpr int toleranceDivisor = 10;
    if (!BusErrors::isTimeout(answer) || milliseconds < limit - limit / toleranceDivisor) {
        return false;
    }
    const QString service = call.service();
    const QString path = call.path();
    const QMutexLocker lock(&mutex);
    const quint64 probe = table.setHung(service);
    if (probe != 0) {
        QMetaObject::invokeMethod(
            this, [this, service, path, probe] { sendProbe(service, path, probe); },
            Qt::QueuedConnection);
    }
    return true;
}

// Asks the object itself, not org.freedesktop.DBus.Peer: bus libraries answer that one in a thread
// of their own even while the thread that serves objects hangs.
void ClientBus::sendProbe(const QString &service, const QString &path, quint64 probe)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, path, BusNames::processDescriptionInterface(), QStringLiteral("ListInstances"));
    message.setAutoStartService(false);
    // Without a connection there is none to wait for: the loss of the bus ends all probes.
    BusCall::send(link.connection(), message, noTimeLimit(), this,
                  [this, service, path, probe](const QDBusMessage &answer) {
                      handleProbe(service, path, probe, answer);
                  });
}

void ClientBus::handleProbe(const QString &service, const QString &path, quint64 probe,
                            const QDBusMessage &answer)
{
    if (!link.isConnected()) {
        return; // the loss of the bus has ended all probes
    }
    if (BusErrors::isTimeout(answer)) {
        // Either the bus daemon gave up or the service died; then its owner changes, and the next
        // probe finds itself outdated.
        auto *timer = new QTimer(this);
        QObject::connect(timer, &QTimer::timeout, this, [this, timer, service, path, probe] {
            timer->deleteLater();
            repeatProbe(service, path, probe);
        });
        timer->setSingleShot(true);
        timer->start(probeRetryDelay);
        return;
    }
    const bool answered
        = !BusErrors::isServiceMissing(answer) && !BusErrors::isDisconnected(answer);
    const QMutexLocker lock(&mutex);
    table.probeEnded(service, probe, answered);
}

void ClientBus::repeatProbe(const QString &service, const QString &path, quint64 probe)
{
    bool wanted = false;
    {
        const QMutexLocker lock(&mutex);
        wanted = table.isUnderWay(service, probe);
    }
    if (wanted) {
        sendProbe(service, path, probe);
    }
}

void ClientBus::askOwner(const QString &service)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        BusNames::daemonService(), BusNames::daemonPath(), BusNames::daemonInterface(),
        QStringLiteral("GetNameOwner"));
    question << service;
    // Without a connection the question is asked when the bus is back.
    BusCall::send(link.connection(), question, noTimeLimit(), this,
                  [this, service](const QDBusMessage &answer) {
                      if (BusErrors::isDisconnected(answer)) {
                          return;
                      }
                      const bool isOwned = answer.type() == QDBusMessage::ReplyMessage;
                      const QString owner = answer.arguments().value(0).toString();
                      const QMutexLocker lock(&mutex);
                      daemonSilent = false;
                      table.ownerAnswered(service, isOwned ? owner : QString());
                      changed.wakeAll();
                  });
}

void ClientBus::handleOwnerChanged(const QDBusMessage &message)
{
    // Anyone may send a signal with this interface; only the bus daemon's own has this sender.
    const QList<QVariant> arguments = message.arguments();
    if (message.service() != BusNames::daemonService()
        || message.signature() != QLatin1String("sss")) {
        return;
    }
    const QMutexLocker lock(&mutex);
    table.ownerChanged(arguments.at(0).toString(), arguments.at(2).toString());
    changed.wakeAll();
}

void ClientBus::handleSignal(const QDBusMessage &message)
{
    const bool hasArgument = message.signature() == QLatin1String("s");
    if (!hasArgument && !message.signature().isEmpty()) {
        return;
    }
    const QString argument = hasArgument ? message.arguments().at(0).toString() : QString();
    const QMutexLocker lock(&mutex);
    table.signalReceived(message.service(), message.path(), message.member(), argument);
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
        table.signalReceived(message.service(), message.path(), message.member(), QString());
    }
}

void ClientBus::handleLost()
{
    const QMutexLocker lock(&mutex);
    table.busLost();
    daemonSilent = false;
    changed.wakeAll();
}

void ClientBus::handleRestored()
{
    QString error;
    if (!setUp(error)) {
        qCWarning(busLog).noquote()
            << "No announcements from" << link.bus().label() << "-" << error;
    }
}

bool ClientBus::setUp(QString &error)
{
    const bool subscribed = subscribe(error);
    QStringList services;
    {
        const QMutexLocker lock(&mutex);
        table.busRestored();
        services = table.services();
    }
    for (const QString &service : services) {
        askOwner(service);
    }
    return subscribed;
}
