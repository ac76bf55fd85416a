// SPDX-License-Identifier: MIT
// Asynchronous fetches that wait for their turn, and how many may be under way at a time.
#include "FetchQueue.h"

#include <QMetaObject>
#include <QMutexLocker>

#include <utility>

namespace {

QString keyOf(const QDBusMessage &call)
{
    QString key = call.service() + QLatin1Char('\n') + call.path();
    const QList<QVariant> arguments = call.arguments();
    for (const QVariant &argument : arguments) {
        key += QLatin1Char('\n') + argument.toString();
    }
    return key;
}
}

DescriptionFetch::DescriptionFetch(const QDBusMessage &call, int timeLimit, QObject *receiver,
                                   Handler handler, const ServiceListener *asker)
    : call(call)
    , timeLimit(timeLimit)
    , asker(asker)
    , key(keyOf(call))
    , handler(std::move(handler))
    , receiver(receiver)
{
}

void DescriptionFetch::abandon()
{
    const QMutexLocker lock(&mutex);
    receiver = nullptr;
}

bool DescriptionFetch::isAbandoned() const
{
    const QMutexLocker lock(&mutex);
    return receiver == nullptr;
}

void DescriptionFetch::report(const DescriptionReply &reply)
{
    const QMutexLocker lock(&mutex);
    if (receiver != nullptr) {
        // What is posted goes with the receiver.
        QMetaObject::invokeMethod(
            receiver, [handler = handler, reply] { handler(reply); }, Qt::QueuedConnection);
    }
}

QVector<FetchQueue::Fetch> FetchQueue::takeNext()
{
    QVector<Fetch> next;
    QVector<Fetch> later;
    for (const Fetch &fetch : std::as_const(waiting)) {
        if (fetch->isAbandoned()) {
            continue;
        }
        if (!mayStart(*fetch)) {
            later += fetch;
            continue;
        }
        underWay += fetch->key;
        ++underWayOfService[fetch->call.service()];
        next += fetch;
    }
    waiting = later;
    return next;
}

void FetchQueue::ended(const DescriptionFetch &fetch)
{
    underWay -= fetch.key;
    if (--underWayOfService[fetch.call.service()] == 0) {
        underWayOfService.remove(fetch.call.service());
    }
}

bool FetchQueue::mayStart(const DescriptionFetch &fetch) const
{
    return underWay.size() < mostUnderWay && !underWay.contains(fetch.key)
        && underWayOfService.value(fetch.call.service()) < mostOfOneService;
}
