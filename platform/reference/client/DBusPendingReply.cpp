// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#include "DBusPendingReply.h"

#include "DBusPendingReplyPrivate.h"
#include "DescriptionReply.h"

#include <utility>

DBusPendingReply::DBusPendingReply(DBusPendingReplyPrivate *state)
    : d(state)
{
}

DBusPendingReply::~DBusPendingReply() = default;

QVariant DBusPendingReply::getReply()
{
    return d->value();
}

QSharedPointer<DBusPendingReply>
DBusPendingReplyPrivate::send(const QSharedPointer<ClientBus> &bus, const QDBusMessage &call,
                              const QSharedPointer<FetchMemory> &memory, QThread *thread)
{
    // Queued string connections to dBusServiceError are dropped unless the type is registered.
    qRegisterMetaType<ErrorContainer>("ErrorContainer");
    QSharedPointer<DBusPendingReply> reply;
    if (bus->isMissing() || !bus->connection().isConnected()) {
        return reply;
    }
    auto *state = new DBusPendingReplyPrivate(memory);
    reply.reset(new DBusPendingReply(state));
    state->q = reply.data();
    state->fetch = FetchQueue::Fetch::create(
        call, callTimeLimit(), state->q,
        [state](const DescriptionReply &answer, bool missed) { state->finish(answer, missed); });
    reply->moveToThread(thread);
    bus->fetch(state->fetch);
    return reply;
}

DBusPendingReplyPrivate::DBusPendingReplyPrivate(QSharedPointer<FetchMemory> memory)
    : memory(std::move(memory))
{
}

DBusPendingReplyPrivate::~DBusPendingReplyPrivate()
{
    fetch->abandon();
}

void DBusPendingReplyPrivate::finish(const DescriptionReply &answer, bool missed)
{
    const QString instanceName = fetch->call.arguments().value(0).toString();
    if (missed) {
        memory->noteMissed(instanceName);
    }
    if (!answer.prepared.isNull()) {
        memory->expect(instanceName, answer.prepared);
    }
    reply = answer.value;
    const ErrorContainer error = answer.error; // the answer may go with this object
    // Whoever hears of it may release the reply, and this object with it: nothing follows.
    if (error.getCode() == 0) {
        Q_EMIT q->dBusServiceFinished();
    } else {
        Q_EMIT q->dBusServiceError(error);
    }
}
