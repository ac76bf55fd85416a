// SPDX-License-Identifier: MIT
// Sends method calls in the ways that are safe with connections that come and go.
#ifndef BUSCALL_H
#define BUSCALL_H

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

class QObject;

namespace BusCall {

/// Sends a call and waits for its end. Runs no event loop.
///
/// Not QDBusConnection::call: QtDBus 5.15 lets that one write the connection's last error in the
/// calling thread, without a lock.
///
/// Threads: any.
QDBusMessage wait(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds);

/// Sends a call and hands its answer over.
///
/// @param context  in whose thread the answer is handed over; no answer once it is destroyed
/// @returns false when there is no connection; then no answer follows
bool send(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds,
          QObject *context, std::function<void(const QDBusMessage &)> handleAnswer);
}

#endif
