// SPDX-License-Identifier: MIT
// The objects that one bus connection calls: receivers of signals.
#ifndef CONNECTIONHOOKS_H
#define CONNECTIONHOOKS_H

#include <QDBusConnection>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

/// A signal as a receiver asks for it. Empty strings stand for any.
struct BusSignal
{
    QString path;
    QString interface;
    QString member;
    QStringList firstArguments; // that the signal must carry, from the first on
};

/// Lets go of all objects before their connection is closed. QtDBus closes it in a thread of its own,
/// after the call that asked for it has returned, and reaches then for every object that the
/// connection still knows; by that time their owner may have destroyed them.
///
/// Threads: those of its BusLink.
class ConnectionHooks
{
public:
    /// @param slot  as SLOT() names it; takes one QDBusMessage
    /// @return false if the connection refused
    bool subscribe(QDBusConnection connection, const BusSignal &signal, QObject *receiver,
                   const char *slot);

    /// Once it returns, the connection knows none of the objects.
    void releaseAll(QDBusConnection connection);

private:
    struct Subscription
    {
        BusSignal signal;
        QPointer<QObject> receiver; // QtDBus forgets one that is destroyed earlier
        const char *slot;
    };

    QVector<Subscription> subscriptions;
};

#endif
