// SPDX-License-Identifier: MIT
// Asks about sources that clients read although they are lost or outdated, and makes up for what was missed.
#include "BusCall.h"
#include "BusErrors.h"
#include "BusLog.h"
#include "BusNames.h"
#include "ClientBus.h"

#include <QMutexLocker>

namespace {

// The name stands in the text as it is: it holds nothing that JSON would have to escape, but its
// slash.
bool namesBuffer(const DescriptionReply &reply, const QString &bufferName)
{
    return reply.value.toString().contains(bufferName.mid(1) + QLatin1Char('"'));
}
}

void ClientBus::watchLost(const QSharedPointer<SourceWatch> &source)
{
    QMetaObject::invokeMethod(
        this,
        [this, source] {
            const QString service = BusNames::serviceOfModule(source->name.module);
            bool isServed = false;
            withTable([&](ServiceTable &known) { isServed = known.services().contains(service); });
            if (isServed) {
                losses.add(service, source);
            }
        },
        Qt::QueuedConnection);
}

void ClientBus::handleLossDue(const QString &service, const LostSources &sources)
{
    BusCall::send(link.connection(), ownerQuestion(service), callTimeLimit(), this,
                  [this, service, sources](const QDBusMessage &answer) {
                      handleLostOwner(service, sources, answer);
                  });
}

// Whoever announces an owner says it before it answers this: when it says anything else now, an
// announcement was dropped, and with it anything else may have been.
void ClientBus::handleLostOwner(const QString &service, const LostSources &sources,
                                const QDBusMessage &answer)
{
    const bool isOwned = answer.type() == QDBusMessage::ReplyMessage;
    if (!isOwned && BusErrors::kindOf(answer) != BusErrors::Kind::ServiceMissing) {
        return; // the bus is away or silent
    }
    const QString owner = isOwned ? answer.arguments().value(0).toString() : QString();
    {
        const QMutexLocker lock(&mutex);
        if (!table.isKnown(service)) {
            return; // being asked for already
        }
        if (table.ownerOf(service) == owner) {
            fetchLost(service, owner, sources);
            return;
        }
        table.busLost(); // as after a restart of the bus: all that was said meanwhile is unknown
    }
    qCInfo(busLog).noquote() << "Missed announcements of" << link.bus().label()
                             << "- asking for all sources again";
    askForAll();
    watchers.tell({SystemChange::BusFound, {}});
}

// Caller holds the mutex. The service's owner is the same, so it has retired the buffer or changed
// properties: where its description differs by now, its announcement of that was missed.
void ClientBus::fetchLost(const QString &service, const QString &owner, const LostSources &sources)
{
    if (owner.isEmpty() || table.isHung(service)) {
        return;
    }
    for (const QSharedPointer<SourceWatch> &source : sources) {
        const QString path = BusNames::pathOfObject(source->name.object);
        fetches.add(FetchQueue::Fetch::create(
            descriptionCall(service, path, source->name.instance, QString()), callTimeLimit(), this,
            [this, owner, source](const DescriptionReply &reply) {
                handleLostFetch(owner, *source, reply);
            }));
    }
    startFetchesSoon();
}

void ClientBus::handleLostFetch(const QString &owner, const SourceWatch &source,
                                const DescriptionReply &reply)
{
    if (reply.error.getCode() != 0 || source.hasEnded() || reply.prepared.isNull()
        || reply.prepared->token == source.token) {
        return;
    }
    const QString missed = namesBuffer(reply, source.bufferName)
        ? BusNames::propertyChangedSignal()
        : BusNames::processDescriptionChangedSignal();
    const QMutexLocker lock(&mutex);
    table.signalReceived(
        {owner, BusNames::pathOfObject(source.name.object), missed, source.name.instance});
}
