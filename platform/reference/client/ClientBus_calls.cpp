// SPDX-License-Identifier: MIT
// Calls of clients, blocking and queued, and services that do not answer them.
#include "BackgroundWork.h"
#include "BusCall.h"
#include "BusErrors.h"
#include "BusNames.h"
#include "ClientBus.h"

#include <QDBusError>
#include <QElapsedTimer>
#include <QMutexLocker>
#include <QThread>
#include <QTimer>

namespace {

// A probe whose answer the bus daemon gave up on is sent again after this time. Milliseconds.
constexpr int probeRetryDelay = 1000;

QDBusMessage refusalOfChild(const QDBusMessage &call)
{
    return call.createErrorReply(
        QDBusError::Disconnected,
        QStringLiteral("this process was forked after its parent had connected; fork first"));
}

// Milliseconds after which a call that was refused for now is sent once more.
int secondTryDelay(int limit)
{
    constexpr int longest = 250;
    constexpr int partOfLimit = 4;
    return qMin(longest, limit / partOfLimit);
}

// Characters of a description that takes some milliseconds to read.
constexpr int largeText = 1024 * 1024;
}

QDBusMessage ClientBus::call(const QDBusMessage &call, const ServiceListener *asker)
{
    if (isMissing()) {
        return refusalOfChild(call);
    }
    const int limit = callTimeLimit();
    {
        const QMutexLocker lock(&mutex);
        if (table.isHung(call.service())) {
            noteOwed(call, asker);
            return call.createErrorReply(
                QDBusError::NoReply,
                QStringLiteral("the service did not answer an earlier call in time and has been "
                               "silent since"));
        }
    }
    QDBusMessage request = call;
    request.setAutoStartService(false);
    QElapsedTimer timer;
    timer.start();
    QDBusMessage answer = BusCall::wait(link.connection(), request, limit);
    if (BusErrors::kindOf(answer) == BusErrors::Kind::RefusedForNow) {
        QThread::msleep(static_cast<unsigned long>(secondTryDelay(limit)));
        const int left = qMax(1, limit - static_cast<int>(timer.elapsed()));
        answer = BusCall::wait(link.connection(), request, left);
    }
    noteTimeout(call, asker, answer, timer.elapsed(), limit);
    return answer;
}

void ClientBus::fetch(const FetchQueue::Fetch &fetch)
{
    {
        const QMutexLocker lock(&mutex);
        fetches.add(fetch);
    }
    startFetchesSoon();
}

void ClientBus::startFetchesSoon()
{
    QMetaObject::invokeMethod(
        this, [this] { startFetches(); }, Qt::QueuedConnection);
}

void ClientBus::startFetches()
{
    QVector<FetchQueue::Fetch> next;
    {
        const QMutexLocker lock(&mutex);
        next = fetches.takeNext();
    }
    for (const FetchQueue::Fetch &fetch : qAsConst(next)) {
        sendFetch(fetch, true);
    }
}

void ClientBus::sendFetch(const FetchQueue::Fetch &fetch, bool mayTryAgain)
{
    QElapsedTimer timer;
    timer.start();
    const bool sent = BusCall::send(
        link.connection(), fetch->call, fetch->timeLimit, this,
        [this, fetch, timer, mayTryAgain](const QDBusMessage &answer) {
            if (mayTryAgain && BusErrors::kindOf(answer) == BusErrors::Kind::RefusedForNow) {
                QTimer::singleShot(secondTryDelay(fetch->timeLimit), this,
                                   [this, fetch] { sendFetch(fetch, false); });
                return;
            }
            endFetch(fetch, answer, timer.elapsed());
        });
    if (!sent) {
        endFetch(fetch,
                 fetch->call.createErrorReply(QDBusError::Disconnected,
                                              QStringLiteral("Not connected to the bus")),
                 0);
    }
}

void ClientBus::endFetch(const FetchQueue::Fetch &fetch, const QDBusMessage &answer,
                         qint64 milliseconds)
{
    noteTimeout(fetch->call, fetch->isAbandoned() ? nullptr : fetch->asker, answer, milliseconds,
                fetch->timeLimit);
    {
        const QMutexLocker lock(&mutex);
        fetches.ended(*fetch);
    }
    reportFetch(fetch, answer);
    startFetchesSoon();
}

// The text is read here, so that the client's thread finds it understood. A large one would keep
// the bus thread from other services.
void ClientBus::reportFetch(const FetchQueue::Fetch &fetch, const QDBusMessage &answer)
{
    const auto prepareAndReport = [fetch, answer] {
        if (fetch->isAbandoned()) {
            return;
        }
        DescriptionReply reply = judgeDescriptionReply(fetch->call, answer);
        if (reply.error.getCode() == 0) {
            reply.prepared = prepareDescription(reply.value.toString());
            reply.value = reply.prepared->text; // one text for all who have the same
        }
        fetch->report(reply);
    };
    const bool isLarge = answer.type() == QDBusMessage::ReplyMessage
        && answer.arguments().value(0).toString().size() > largeText;
    if (isLarge) {
        BackgroundWork::run(prepareAndReport);
    } else {
        prepareAndReport();
    }
}

// Caller holds the mutex.
void ClientBus::noteOwed(const QDBusMessage &call, const ServiceListener *asker)
{
    table.noteOwed(call.path(), asker, call.arguments().value(0).toString());
}

void ClientBus::noteTimeout(const QDBusMessage &call, const ServiceListener *asker,
                            const QDBusMessage &answer, qint64 milliseconds, int limit)
{
    // The same error comes at once when the service dies with the call: that is no hanging.
    // QtDBus measures with coarse timers, which may be 5 % early.
    constexpr int toleranceDivisor = 10;
    if (BusErrors::kindOf(answer) != BusErrors::Kind::TimedOut
        || milliseconds < limit - limit / toleranceDivisor) {
        return;
    }
    const QMutexLocker lock(&mutex);
    noteOwed(call, asker);
    const Probe probe{call.service(), call.path(), table.setHung(call.service())};
    if (probe.number != 0) {
        QMetaObject::invokeMethod(
            this, [this, probe] { sendProbe(probe); }, Qt::QueuedConnection);
    }
}

// Asks the object itself, not org.freedesktop.DBus.Peer: bus libraries answer that one in a thread
// of their own even while the thread that serves objects hangs.
void ClientBus::sendProbe(const Probe &probe)
{
    QDBusMessage message = QDBusMessage::createMethodCall(probe.service, probe.path,
                                                          BusNames::processDescriptionInterface(),
                                                          QStringLiteral("ListInstances"));
    message.setAutoStartService(false);
    // Without a connection there is none to wait for: the loss of the bus ends all probes.
    BusCall::send(link.connection(), message, noTimeLimit, this,
                  [this, probe](const QDBusMessage &answer) { handleProbe(probe, answer); });
}

void ClientBus::handleProbe(const Probe &probe, const QDBusMessage &answer)
{
    if (!link.isConnected()) {
        return; // the loss of the bus has ended all probes
    }
    const BusErrors::Kind kind = BusErrors::kindOf(answer);
    if (kind == BusErrors::Kind::TimedOut) {
        // Either the bus daemon gave up or the service died; then its owner changes, and the next
        // probe finds itself outdated.
        QTimer::singleShot(probeRetryDelay, this, [this, probe] { repeatProbe(probe); });
        return;
    }
    const QMutexLocker lock(&mutex);
    table.probeEnded(probe.service, probe.number,
                     kind != BusErrors::Kind::ServiceMissing
                         && kind != BusErrors::Kind::Disconnected);
}

void ClientBus::repeatProbe(const Probe &probe)
{
    bool wanted = false;
    {
        const QMutexLocker lock(&mutex);
        wanted = table.isUnderWay(probe.service, probe.number);
    }
    if (wanted) {
        sendProbe(probe);
    }
}
