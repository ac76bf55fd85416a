// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#ifndef DBUSPENDINGREPLYPRIVATE_H
#define DBUSPENDINGREPLYPRIVATE_H

#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "FetchQueue.h"

#include <QDBusMessage>
#include <QPointer>
#include <QSharedPointer>
#include <QVariant>

class DBusPendingReplyPrivate
{
public:
    /// Sends the call when its turn comes.
    ///
    /// @param asker  in whose thread the reply reports
    /// @returns null when there is no connection to send it on
    static QSharedPointer<DBusPendingReply> send(const DBusProcessDescriptionConnector &asker,
                                                 const QDBusMessage &call);

    explicit DBusPendingReplyPrivate(const DBusProcessDescriptionConnector &asker);
    ~DBusPendingReplyPrivate();

    const QVariant &value() const { return reply; }

private:
    void finish(const DescriptionReply &answer);

    const QPointer<const DBusProcessDescriptionConnector> asker;
    FetchQueue::Fetch fetch;
    DBusPendingReply *q = nullptr;
    QVariant reply;
};

#endif
