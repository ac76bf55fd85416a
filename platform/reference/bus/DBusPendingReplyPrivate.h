// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#ifndef DBUSPENDINGREPLYPRIVATE_H
#define DBUSPENDINGREPLYPRIVATE_H

#include "ClientBus.h"
#include "DBusPendingReply.h"
#include "FetchMemory.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QSharedPointer>
#include <QVariant>

class BusCall;
class QThread;

class DBusPendingReplyPrivate
{
public:
    /// Sends the call.
    ///
    /// @param thread  in which the reply reports
    /// @returns null when there is no connection to send it on
    static QSharedPointer<DBusPendingReply> send(const QSharedPointer<ClientBus> &bus,
                                                 const QDBusMessage &call,
                                                 const QSharedPointer<FetchMemory> &memory,
                                                 QThread *thread);

    DBusPendingReplyPrivate(QSharedPointer<ClientBus> bus, const QDBusMessage &call,
                            QSharedPointer<FetchMemory> memory);
    ~DBusPendingReplyPrivate();

    const QVariant &value() const { return reply; }

private:
    void start(QThread *thread);
    void finish();

    const QSharedPointer<ClientBus> bus;
    const QDBusConnection connection;
    const QDBusMessage call;
    const QSharedPointer<FetchMemory> memory;
    const int timeLimit;
    QElapsedTimer elapsed;
    DBusPendingReply *q = nullptr;
    BusCall *watcher = nullptr;
    QVariant reply;
};

#endif
