// SPDX-License-Identifier: MIT
// The objects that one bus connection calls: receivers of signals.
#include "ConnectionHooks.h"

bool ConnectionHooks::subscribe(QDBusConnection connection, const BusSignal &signal,
                                QObject *receiver, const char *slot)
{
    if (!connection.connect(QString(), signal.path, signal.interface, signal.member,
                            signal.firstArguments, QString(), receiver, slot)) {
        return false;
    }
    subscriptions.append({signal, receiver, slot});
    return true;
}

void ConnectionHooks::releaseAll(QDBusConnection connection)
{
    for (const Subscription &each : qAsConst(subscriptions)) {
        connection.disconnect(QString(), each.signal.path, each.signal.interface,
                              each.signal.member, each.signal.firstArguments, QString(),
                              each.receiver, each.slot);
    }
    subscriptions.clear();
}
