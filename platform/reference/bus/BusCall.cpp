// SPDX-License-Identifier: MIT
// Sends method calls in the ways that are safe with connections that come and go.
#include "BusCall.h"

#include <QDBusError>
#include <QDBusPendingCall>

#include <limits>
#include <utility>

BusCall::BusCall(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds)
    : BusCallConnection{connection}
    , QDBusPendingCallWatcher(connection.asyncCall(message, milliseconds))
{
}

QDBusMessage BusCall::wait(const QDBusConnection &connection, const QDBusMessage &message,
                           int milliseconds)
{
    const BusCallConnection held{connection}; // destroyed after the call
    if (!connection.isConnected()) {
        return message.createErrorReply(QDBusError::Disconnected,
                                        QStringLiteral("Not connected to the bus"));
    }
    QDBusPendingCall call = held.connection.asyncCall(message, milliseconds);
    call.waitForFinished();
    return call.reply();
}

bool BusCall::send(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds,
                   QObject *context, std::function<void(const QDBusMessage &)> handleAnswer)
{
    if (!connection.isConnected()) {
        return false;
    }
    auto *const call = new BusCall(connection, message, milliseconds);
    call->setParent(context);
    QObject::connect(call, &QDBusPendingCallWatcher::finished, context,
                     [call, handleAnswer = std::move(handleAnswer)] {
                         const QDBusMessage answer = call->reply();
                         call->deleteLater();
                         handleAnswer(answer); // may end the context, and this call with it
                     });
    return true;
}

int noTimeLimit()
{
    return std::numeric_limits<int>::max(); // libdbus takes this number so
}
