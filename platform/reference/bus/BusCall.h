// SPDX-License-Identifier: MIT
// Sends method calls in the ways that are safe with connections that come and go.
#ifndef BUSCALL_H
#define BUSCALL_H

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <functional>

/// What a call's destruction must find in place; a base class, so that it goes after the call
/// itself.
struct BusCallConnection
{
    QDBusConnection connection;
};

/// A call under way.
///
/// Holds its connection: QtDBus 5.15 deletes the pending calls of a connection that it closes even
/// while somebody holds them.
///
/// Threads: belongs to the thread that made it, or that it is moved to.
class BusCall : private BusCallConnection, public QDBusPendingCallWatcher
{
public:
    /// @param connection    must be connected, or the call never ends
    /// @param milliseconds  time limit
    BusCall(const QDBusConnection &connection, const QDBusMessage &message, int milliseconds);

    /// Sends a call and waits for its end. Runs no event loop.
    ///
    /// Not QDBusConnection::call: QtDBus 5.15 lets that one write the connection's last error in
    /// the calling thread, without a lock.
    ///
    /// Threads: any.
    static QDBusMessage wait(const QDBusConnection &connection, const QDBusMessage &message,
                             int milliseconds);

    /// Sends a call and hands its answer over.
    ///
    /// @param context  in whose thread the answer is handed over; no answer once it is destroyed
    /// @returns false when there is no connection; then no answer follows
    static bool send(const QDBusConnection &connection, const QDBusMessage &message,
                     int milliseconds, QObject *context,
                     std::function<void(const QDBusMessage &)> handleAnswer);
};

/// Time limit of calls that may take for ever.
int noTimeLimit();

#endif
