// SPDX-License-Identifier: MIT
// One private connection to the bus that comes back after the bus daemon restarted.
#include "BusLink.h"

#include "BusCall.h"
#include "BusErrors.h"
#include "BusLog.h"
#include "BusNames.h"
#include "BusThread.h"

#include <QAtomicInt>
#include <QDBusError>
#include <QDBusMessage>
#include <QMutexLocker>

#include <dbus/dbus.h>

#include <limits>
#include <utility>

namespace {

// Milliseconds. The first attempt is early, because a bus daemon restarts in a blink; the last
// delay bounds how long data stands still after a longer outage.
constexpr int firstDelay = 50;
constexpr int longestDelay = 2000;

QString uniqueConnectionName()
{
    static QAtomicInt count;
    return QStringLiteral("processdata-%1").arg(count.fetchAndAddRelaxed(1));
}

// libdbus stops reading while 64 MiB of received messages are alive, and goes on in the thread that
// frees them. QtDBus 5.15 cannot follow it there: with one large description the connection would
// be deaf for good. So the limit is lifted; what one message may hold is still limited by the bus
// daemon.
void liftReceiveLimit(const QDBusConnection &connection)
{
    if (connection.internalPointer() != nullptr) {
        dbus_connection_set_max_received_size(
            static_cast<DBusConnection *>(connection.internalPointer()),
            std::numeric_limits<int>::max());
    }
}

QDBusMessage daemonCall(const QString &member)
{
    return QDBusMessage::createMethodCall(BusNames::daemonService(), BusNames::daemonPath(),
                                          BusNames::daemonInterface(), member);
}

// Introduces a connection that QtDBus opened without doing so, and waits for the answer, at most for
// the platform's time limit. Nothing else may be sent before.
//
// Not QDBusConnection::connectToBus(address): QtDBus 5.15 lets go of a connection whose greeting is
// refused without closing it, and libdbus ends a process that does so. A bus daemon refuses the
// greeting when a user has as many connections as it allows.
bool greetBus(const QDBusConnection &connection, QString &error)
{
    const QDBusMessage answer
        = BusCall::wait(connection, daemonCall(QStringLiteral("Hello")), callTimeLimit());
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return true;
    }
    error = BusErrors::reason(answer.errorName(), answer.errorMessage());
    return false;
}

// The bus daemon is to pass a signal on to such a connection; does not wait.
void requestSignal(const QDBusConnection &connection, const BusSignal &signal)
{
    const QString path
        = signal.path.isEmpty() ? QString() : QStringLiteral("path='%1',").arg(signal.path);
    QDBusMessage call = daemonCall(QStringLiteral("AddMatch"));
    call << QStringLiteral("type='signal',%1interface='%2',member='%3'")
                .arg(path, signal.interface, signal.member);
    connection.send(call);
}

QDBusConnection noConnection()
{
    return QDBusConnection(QString());
}
}

BusLink::BusLink(const BusChoice &choice, QObject *parent)
    : QObject(parent)
    , choice(choice)
    , retryTimer(this) // a child, so that it follows into another thread
    , current(noConnection())
{
    retryTimer.setSingleShot(true);
    QObject::connect(&retryTimer, &QTimer::timeout, this, &BusLink::retry);
}

BusLink::~BusLink()
{
    drop();
}

bool BusLink::open(QString &error)
{
    if (isConnected()) {
        return true;
    }
    if (!connectNow(error)) {
        return false; // a running retry goes on
    }
    retryTimer.stop();
    return true;
}

void BusLink::close()
{
    retryTimer.stop();
    drop();
}

QDBusConnection BusLink::connection() const
{
    const QMutexLocker lock(&mutex);
    return current;
}

bool BusLink::isConnected() const
{
    const QMutexLocker lock(&mutex);
    return connected;
}

bool BusLink::subscribe(const BusSignal &signal, QObject *receiver, const char *slot)
{
    const QDBusConnection present = connection();
    if (!hook(present, signal, receiver, slot)) {
        return false;
    }
    if (choice.needsGreeting()) {
        requestSignal(present, signal);
    }
    return true;
}

bool BusLink::hook(QDBusConnection to, const BusSignal &signal, QObject *receiver, const char *slot)
{
    if (!to.connect(QString(), signal.path, signal.interface, signal.member, receiver, slot)) {
        return false;
    }
    subscriptions.append({signal, receiver, slot});
    return true;
}

void BusLink::releaseAll(QDBusConnection from)
{
    for (const Subscription &each : qAsConst(subscriptions)) {
        from.disconnect(QString(), each.signal.path, each.signal.interface, each.signal.member,
                        each.receiver, each.slot);
    }
    subscriptions.clear();
}

bool BusLink::connectNow(QString &error)
{
    if (!BusThread::canStart(error)) {
        return false;
    }
    const QString name = uniqueConnectionName();
    QDBusConnection fresh = choice.connectTo(name);
    liftReceiveLimit(fresh);
    // libdbus makes this signal itself when the socket closes; it never crosses the bus.
    const BusSignal disconnected{QStringLiteral("/org/freedesktop/DBus/Local"),
                                 QStringLiteral("org.freedesktop.DBus.Local"),
                                 QStringLiteral("Disconnected")};
    refusal.clear();
    const bool ready = fresh.isConnected()
        && hook(fresh, disconnected, this, SLOT(handleDisconnected()))
        && (!choice.needsGreeting() || greetBus(fresh, refusal));
    if (!ready || !fresh.isConnected()) {
        const QDBusError failure = fresh.lastError();
        error = refusal.isEmpty() ? BusErrors::reason(failure.name(), failure.message()) : refusal;
        if (error.isEmpty()) {
            error = QStringLiteral("the connection was closed at once");
        }
        releaseAll(fresh);
        BusChoice::disconnectFrom(name);
        return false;
    }
    const QMutexLocker lock(&mutex);
    current = fresh;
    currentName = name;
    connected = true;
    return true;
}

void BusLink::handleDisconnected()
{
    if (!isConnected()) {
        return;
    }
    drop();
    refusalReported = false;
    qCWarning(busLog).noquote() << "Lost the connection to" << choice.label()
                                << "- trying to reconnect";
    Q_EMIT lost();
    retryTimer.start(firstDelay);
}

void BusLink::retry()
{
    QString error;
    if (!connectNow(error)) {
        if (!refusal.isEmpty() && !refusalReported) {
            refusalReported = true;
            qCWarning(busLog).noquote()
                << "Cannot connect to" << choice.label() << "-" << refusal << "- trying again";
        }
        retryTimer.start(qMin(2 * retryTimer.interval(), longestDelay));
        return;
    }
    qCInfo(busLog).noquote() << "Connected again to" << choice.label();
    Q_EMIT restored();
}

void BusLink::drop()
{
    QString name;
    QDBusConnection old = noConnection();
    {
        const QMutexLocker lock(&mutex);
        name = std::exchange(currentName, QString());
        old = std::exchange(current, noConnection());
        connected = false;
    }
    releaseAll(old);
    if (!name.isEmpty()) {
        BusChoice::disconnectFrom(name);
    }
}
