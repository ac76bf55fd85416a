// SPDX-License-Identifier: MIT
// An asynchronous call of a client, ended by the test.
#ifndef SCRIPTEDREPLY_H
#define SCRIPTEDREPLY_H

#include "DBusPendingReply.h"
#include "ErrorContainer.h"

#include <QSharedPointer>
#include <QVariant>
#include <QWeakPointer>

/// Handle of a fetch that a client began after an announcement.
///
/// Does not keep the call alive unless told to. Ending a call that was released does nothing.
/// Threads: the one in which clients are to be notified.
class PROCESSDATAPLATFORM_EXPORT ScriptedReply
{
public:
    /// A dead handle.
    ScriptedReply() = default;
    /// @param reply  the call that it is to stand for
    explicit ScriptedReply(const QSharedPointer<DBusPendingReply> &reply)
        : reply(reply)
    {
    }

    /// Whether the client still waits: false when a newer fetch has replaced this one.
    bool isAlive() const { return !reply.isNull(); }
    /// Keeps the call alive after the client has released it.
    QSharedPointer<DBusPendingReply> keep() const { return reply.toStrongRef(); }

    /// Sets what the client will read, without telling it.
    void setValue(const QVariant &value);
    /// The description has arrived; usually ScriptedSource::description().
    void finish(const QVariant &value);
    /// The call has failed.
    void fail(const ErrorContainer &error);

private:
    QWeakPointer<DBusPendingReply> reply;
};

#endif
