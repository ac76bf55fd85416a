// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#ifndef DBUSPENDINGREPLYPRIVATE_H
#define DBUSPENDINGREPLYPRIVATE_H

#include "ClientBus.h"
#include "DBusPendingReply.h"
#include "FetchMemory.h"

#include <QDBusMessage>
#include <QSharedPointer>
#include <QVariant>

class QThread;

class DBusPendingReplyPrivate
{
public:
    /// Sends the call when its turn comes.
    ///
    /// @param thread  in which the reply reports
    /// @returns null when there is no connection to send it on
    static QSharedPointer<DBusPendingReply> send(const QSharedPointer<ClientBus> &bus,
                                                 const QDBusMessage &call,
                                                 const QSharedPointer<FetchMemory> &memory,
                                                 QThread *thread);

    explicit DBusPendingReplyPrivate(QSharedPointer<FetchMemory> memory);
    ~DBusPendingReplyPrivate();

    const QVariant &value() const { return reply; }

private:
    void finish(const DescriptionReply &answer, bool missed);

    const QSharedPointer<FetchMemory> memory;
    FetchQueue::Fetch fetch;
    DBusPendingReply *q = nullptr;
    QVariant reply;
};

#endif
