// SPDX-License-Identifier: MIT
// A connection with which a process serves: how it stands, its names, its calls to others.
#include "ServingConnection.h"

#include "BusLog.h"
#include "BusNames.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <utility>

namespace {

// Milliseconds. The first attempt is early, because a bus daemon restarts in a blink; the last
// delay bounds how long data stands still after a longer outage.
constexpr int firstDelay = 50;
constexpr int longestDelay = 2000;

constexpr uint doNotQueue = 4; // flag of RequestName
constexpr uint nowOwner = 1; // its answers
constexpr uint alreadyOwner = 4;

WireMessage daemonCall(const QString &member, const QVariantList &values)
{
    return Wire::call(BusNames::daemonService(), BusNames::daemonPath(),
                      BusNames::daemonInterface(), member, values);
}
}

ServingConnection::ServingConnection(const BusChoice &choice)
    : choice(choice)
    , socket([this](const WireMessage &message) { return handleMessage(message); }, this)
    , retryTimer(this)
{
    retryTimer.setSingleShot(true);
    QObject::connect(&retryTimer, &QTimer::timeout, this, &ServingConnection::retry);
    QObject::connect(&socket, &BusSocket::disconnected, this,
                     &ServingConnection::handleDisconnected);
    QObject::connect(&socket, &BusSocket::progressed, this, &ServingConnection::answerWaiting);
}

ServingConnection::~ServingConnection()
{
    close();
}

bool ServingConnection::open(QString &error)
{
    if (isOpen()) {
        return true;
    }
    if (!socket.open(choice, error)) {
        return false; // a running retry goes on
    }
    if (retryTimer.isActive()) {
        retryTimer.stop();
        Q_EMIT restored();
    }
    return true;
}

void ServingConnection::close()
{
    retryTimer.stop();
    socket.close();
    queue.clear();
    ownerWatches.clear();
    watchedNames.clear();
}

void ServingConnection::handleDisconnected()
{
    if (!socket.isOpen() || socket.isAlive()) {
        return; // told of an earlier connection
    }
    close();
    qCWarning(busLog).noquote() << "Lost the connection to" << choice.label()
                                << "- trying to reconnect";
    retryTimer.start(firstDelay);
    Q_EMIT lost();
}

void ServingConnection::retry()
{
    QString error;
    if (!socket.open(choice, error)) {
        retryTimer.start(qMin(2 * retryTimer.interval(), longestDelay));
        return;
    }
    qCInfo(busLog).noquote() << "Connected again to" << choice.label();
    Q_EMIT restored();
}

ServingConnection::NameResult ServingConnection::takeName(const QString &service, QString &error)
{
    const WireMessage answer = socket.callAndWait(
        daemonCall(QStringLiteral("RequestName"), {service, doNotQueue}), callTimeLimit(), error);
    if (!Wire::isReturn(answer)) {
        return error.contains(QLatin1String(DBUS_ERROR_LIMITS_EXCEEDED)) ? NameResult::Full
                                                                         : NameResult::Failed;
    }
    const quint32 result = Wire::number(answer, 0);
    if (result != nowOwner && result != alreadyOwner) {
        error = QStringLiteral("another process owns it");
        return NameResult::Failed;
    }
    return NameResult::Owned;
}

void ServingConnection::releaseName(const QString &service)
{
    QString error;
    socket.callAndWait(daemonCall(QStringLiteral("ReleaseName"), {service}), callTimeLimit(),
                       error);
}

void ServingConnection::call(const WireMessage &message, int milliseconds, QObject *context,
                             std::function<void(const WireMessage &)> handler)
{
    socket.call(message, milliseconds,
                [context = QPointer<QObject>(context),
                 handler = std::move(handler)](const WireMessage &answer) {
                    if (!context.isNull()) {
                        handler(answer);
                    }
                });
}

bool ServingConnection::watchOwners(const QString &name, QObject *context, OwnerHandler handler)
{
    ownerWatches.erase(
        std::remove_if(ownerWatches.begin(), ownerWatches.end(),
                       [](const OwnerWatch &watch) { return watch.context.isNull(); }),
        ownerWatches.end());
    ownerWatches += OwnerWatch{name, context, std::move(handler)};
    if (watchedNames.contains(name)) {
        return socket.isAlive(); // the bus daemon gives each connection 512 rules
    }
    watchedNames += name;
    QString rule
        = QStringLiteral("type='signal',sender='%1',path='%2',interface='%3',"
                         "member='NameOwnerChanged'")
              .arg(BusNames::daemonService(), BusNames::daemonPath(), BusNames::daemonInterface());
    if (!name.isEmpty()) {
        rule += QStringLiteral(",arg0='%1'").arg(name);
    }
    return socket.addMatch(rule);
}

bool ServingConnection::handleMessage(const WireMessage &message)
{
    switch (dbus_message_get_type(message.get())) {
    case DBUS_MESSAGE_TYPE_METHOD_CALL:
        handleCall(message);
        return true;
    case DBUS_MESSAGE_TYPE_SIGNAL:
        handleOwnerChanged(message);
        return true;
    default:
        return false; // answers find their calls
    }
}

void ServingConnection::handleOwnerChanged(const WireMessage &message)
{
    // Anyone may send a signal with this interface; only the bus daemon's own has this sender.
    if (dbus_message_has_sender(message.get(), DBUS_SERVICE_DBUS) == FALSE
        || dbus_message_is_signal(message.get(), DBUS_INTERFACE_DBUS, "NameOwnerChanged") == FALSE
        || dbus_message_has_signature(message.get(), "sss") == FALSE) {
        return;
    }
    const QString name = Wire::text(message, 0);
    const QString owner = Wire::text(message, 2);
    const QVector<OwnerWatch> watches = ownerWatches; // a handler may add one
    for (const OwnerWatch &watch : watches) {
        if (!watch.context.isNull() && (watch.name.isEmpty() || watch.name == name)) {
            watch.handler(name, owner);
        }
    }
}
