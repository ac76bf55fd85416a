// SPDX-License-Identifier: MIT
// An asynchronous fetch of a description and its end.
#include "DBusPendingReply.h"

#include "BusCall.h"
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
    auto *state = new DBusPendingReplyPrivate(bus, call, memory);
    QSharedPointer<DBusPendingReply> reply(new DBusPendingReply(state));
    if (!state->connection.isConnected()) {
        reply.reset();
        return reply;
    }
    state->q = reply.data();
    state->start(thread);
    return reply;
}

DBusPendingReplyPrivate::DBusPendingReplyPrivate(QSharedPointer<ClientBus> bus,
                                                 const QDBusMessage &call,
                                                 QSharedPointer<FetchMemory> memory)
    : bus(std::move(bus))
    , connection(this->bus->connection())
    , call(call)
    , memory(std::move(memory))
    , timeLimit(callTimeLimit())
{
}

DBusPendingReplyPrivate::~DBusPendingReplyPrivate()
{
    delete watcher; // null once it has reported, so never in the middle of its own signal
}

void DBusPendingReplyPrivate::start(QThread *thread)
{
    elapsed.start();
    watcher = new BusCall(connection, call, timeLimit);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, q, [this] { finish(); });
    q->moveToThread(thread);
    watcher->moveToThread(thread);
}

void DBusPendingReplyPrivate::finish()
{
    const QDBusMessage answer = watcher->reply();
    watcher->deleteLater();
    watcher = nullptr;
    if (bus->noteTimeout(call, answer, elapsed.elapsed(), timeLimit)) {
        memory->noteMissed(call.arguments().value(0).toString());
    }
    const DescriptionReply judged = judgeDescriptionReply(call, answer);
    reply = judged.value;
    // Whoever hears of it may release the reply, and this object with it: nothing follows.
    if (judged.error.getCode() == 0) {
        Q_EMIT q->dBusServiceFinished();
    } else {
        Q_EMIT q->dBusServiceError(judged.error);
    }
}
