// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#include "DBusPendingReply.h"

#include "DBusPendingReplyPrivate.h"
#include "DBusProcessDescriptionConnectorPrivate.h"

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
DBusPendingReplyPrivate::send(const DBusProcessDescriptionConnector &asker,
                              const QDBusMessage &call)
{
    // Queued string connections to dBusServiceError are dropped unless the type is registered.
    qRegisterMetaType<ErrorContainer>("ErrorContainer");
    QSharedPointer<DBusPendingReply> reply;
    const auto &connector = DBusProcessDescriptionConnectorPrivate::of(asker);
    const QSharedPointer<ClientBus> &bus = connector.bus;
    if (bus->isMissing() || !bus->connection().isConnected()) {
        return reply;
    }
    auto *state = new DBusPendingReplyPrivate(asker);
    reply.reset(new DBusPendingReply(state));
    state->q = reply.data();
    state->fetch = FetchQueue::Fetch::create(
        call, callTimeLimit(), state->q,
        [state](const DescriptionReply &answer) { state->finish(answer); }, &connector);
    reply->moveToThread(asker.thread());
    bus->fetch(state->fetch);
    return reply;
}

DBusPendingReplyPrivate::DBusPendingReplyPrivate(const DBusProcessDescriptionConnector &asker)
    : asker(&asker)
{
}

DBusPendingReplyPrivate::~DBusPendingReplyPrivate()
{
    fetch->abandon();
}

void DBusPendingReplyPrivate::finish(const DescriptionReply &answer)
{
    if (!answer.prepared.isNull() && !asker.isNull()) {
        const auto &state = DBusProcessDescriptionConnectorPrivate::of(*asker);
        PreparedDescriptionPointer before; // freed when the table's lock is free again
        state.bus->withTable([&](ServiceTable &table) {
            before = table.expect(&state, fetch->call.arguments().value(0).toString(),
                                  answer.prepared);
        });
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
