// SPDX-License-Identifier: MIT
// The objects that one bus connection calls: receivers of signals, and exported ones.
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

bool ConnectionHooks::exportObject(QDBusConnection connection, const QString &path,
                                   QDBusVirtualObject *object)
{
    if (!connection.registerVirtualObject(path, object)) {
        return false;
    }
    exportedPaths.append(path);
    return true;
}

void ConnectionHooks::withdrawObject(QDBusConnection connection, const QString &path)
{
    if (exportedPaths.removeOne(path)) {
        connection.unregisterObject(path);
    }
}

void ConnectionHooks::releaseAll(QDBusConnection connection)
{
    for (const Subscription &each : qAsConst(subscriptions)) {
        connection.disconnect(QString(), each.signal.path, each.signal.interface,
                              each.signal.member, each.signal.firstArguments, QString(),
                              each.receiver, each.slot);
    }
    subscriptions.clear();
    for (const QString &path : qAsConst(exportedPaths)) {
        connection.unregisterObject(path);
    }
    exportedPaths.clear();
}
