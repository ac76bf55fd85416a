// SPDX-License-Identifier: MIT
// Pending replies that end when the test says so.
#include "DBusPendingReply.h"

#include "CallRecord.h"
#include "Script.h"
#include "ScriptedPendingReply.h"

namespace {

const QString className = QStringLiteral("DBusPendingReply");

} // namespace

class DBusPendingReplyPrivate
{
public:
    static DBusPendingReplyPrivate &of(DBusPendingReply *reply) { return *reply->d; }

    void setValue(const QVariant &newValue)
    {
        value = newValue;
        Script::describes(newValue, *source);
    }

    QSharedPointer<SourceScript> source;
    QString number;
    QVariant value;
};

QSharedPointer<DBusPendingReply> makePendingReply(const QSharedPointer<SourceScript> &source)
{
    const QString number = QString::number(CallRecord::instance().nextNumber(className));
    return QSharedPointer<DBusPendingReply>::create(
        new DBusPendingReplyPrivate{source, number, QVariant()});
}

DBusPendingReply::DBusPendingReply(DBusPendingReplyPrivate *state)
    : d(state)
{
    CallRecord::instance().born(className);
}

DBusPendingReply::~DBusPendingReply()
{
    CallRecord::instance().died(className, d->number);
}

QVariant DBusPendingReply::getReply()
{
    CallRecord::instance().called(className, d->number, QStringLiteral("getReply"));
    return d->value;
}

void ScriptedReply::setValue(const QVariant &value)
{
    if (const QSharedPointer<DBusPendingReply> strong = reply.toStrongRef()) {
        DBusPendingReplyPrivate::of(strong.data()).setValue(value);
    }
}

// The plain pointer leaves the last reference to the library, which may release it in its slot.
void ScriptedReply::finish(const QVariant &value)
{
    setValue(value);
    if (DBusPendingReply *emitter = reply.toStrongRef().data()) {
        Q_EMIT emitter->dBusServiceFinished();
    }
}

void ScriptedReply::fail(const ErrorContainer &error)
{
    if (DBusPendingReply *emitter = reply.toStrongRef().data()) {
        Q_EMIT emitter->dBusServiceError(error);
    }
}
