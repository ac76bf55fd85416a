// SPDX-License-Identifier: MIT
// Sends method calls in the ways that are safe with connections that come and go.
#include "BusCall.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace {

// What a call's destruction must find in place; a base class, so that it goes after the call itself.
struct HeldConnection
{
    QDBusConnection connection;
};

// Holds its connection: QtDBus 5.15 deletes the pending calls of a connection that it closes even
// while somebody holds them.
class PendingCall : private HeldConnection, public QDBusPendingCallWatcher
{
public:
    // The connection must be connected, or the call never ends.
    PendingCall(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds,
                QObject *parent)
        : HeldConnection{connection}
        , QDBusPendingCallWatcher(connection.asyncCall(message, milliseconds), parent)
    {
    }
};
}

QDBusMessage BusCall::wait(const QDBusConnection &connection, const QDBusMessage &message,
                           int milliseconds)
{
    if (!connection.isConnected()) {
        return message.createErrorReply(QDBusError::Disconnected,
                                        QStringLiteral("Not connected to the bus"));
    }
    QDBusPendingCall call = connection.asyncCall(message, milliseconds);
    call.waitForFinished();
    return call.reply();
}

bool BusCall::send(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds,
                   QObject *context, std::function<void(const QDBusMessage &)> handleAnswer)
{
    if (!connection.isConnected()) {
        return false;
    }
    auto *const call = new PendingCall(connection, message, milliseconds, context);
    QObject::connect(call, &QDBusPendingCallWatcher::finished, context,
                     [call, handleAnswer = std::move(handleAnswer)] {
                         const QDBusMessage answer = call->reply();
                         call->deleteLater();
                         handleAnswer(answer); // may end the context, and this call with it
                     });
    return true;
}
