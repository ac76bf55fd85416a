// SPDX-License-Identifier: MIT
// A scripted asynchronous call, ended by the test.
#ifndef SCRIPTEDREPLY_H
#define SCRIPTEDREPLY_H

#include "DBusPendingReply.h"
#include "ErrorContainer.h"

#include <QSharedPointer>
#include <QVariant>
#include <QWeakPointer>

/// Handle of a pending reply that was given to the library.
///
/// Does not keep the reply alive unless told to. Ending a reply that was released does nothing, as
/// the contract demands.
class PROCESSDATAPLATFORM_EXPORT ScriptedReply
{
public:
    ScriptedReply() = default;
    explicit ScriptedReply(const QSharedPointer<DBusPendingReply> &reply)
        : reply(reply)
    {
    }

    bool isAlive() const { return !reply.isNull(); }
    /// Keeps the reply alive after the library has released it.
    QSharedPointer<DBusPendingReply> keep() const { return reply.toStrongRef(); }

    /// What getReply() gives from now on.
    void setValue(const QVariant &value);
    /// Emits dBusServiceFinished in the calling thread.
    void finish(const QVariant &value);
    /// Emits dBusServiceError in the calling thread.
    void fail(const ErrorContainer &error);

private:
    QWeakPointer<DBusPendingReply> reply;
};

#endif
