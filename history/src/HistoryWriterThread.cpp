// SPDX-License-Identifier: MIT
// The thread that carries what waits into the database, and tries again when that fails.
#include "HistoryWriterThread.h"

#include "HistorySchema.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

constexpr size_t batch = 20000; // samples of one transaction at most: bounds log and memory
constexpr int removedAtLeast = 5000;
constexpr int retryEvery = 500; // ms at least: a server that comes up has other things to do

} // namespace

HistoryWriterThread::HistoryWriterThread(const HistorySettings &settings, HistoryWaiting &waiting)
    : settings(settings)
    , waiting(waiting)
{
}

void HistoryWriterThread::run()
{
    failure = HistoryPlace::parse(settings.database, &place);
    const bool open = failure.isEmpty() && connectDatabase();
    {
        const QMutexLocker lock(&waiting.mutex);
        waiting.state = open ? HistoryWaiting::State::Running : HistoryWaiting::State::Refused;
        waiting.error = failure;
        waiting.changed.wakeAll();
    }
    if (open) {
        addStart(HistoryEvent::Kind::RecorderStarted, {});
        work();
        disconnectDatabase();
    }
}

bool HistoryWriterThread::connectDatabase()
{
    connection = HistoryConnection::open(place, HistoryConnection::Purpose::Writing, &failure);
    if (!connection) {
        return false;
    }
    const QString problem = HistorySchema::prepare(*connection);
    if (!problem.isEmpty()) {
        failure = place.shown() + QLatin1Char(' ') + problem;
        connection.reset();
        return false;
    }
    store = std::make_unique<HistoryStore>(*connection);
    retention = std::make_unique<HistoryRetention>(*connection, settings.keep, settings.maxSize);
    file = place.isFile() ? HistoryFile::identity(place.file) : HistoryFile::Identity();
    return true;
}

void HistoryWriterThread::disconnectDatabase()
{
    retention.reset();
    store.reset();
    connection.reset();
}

// SQLite goes on writing a file that nobody can find any more.
void HistoryWriterThread::checkFile()
{
    if (!connection || !place.isFile() || HistoryFile::identity(place.file) == file) {
        return;
    }
    disconnectDatabase();
    replaced = true;
}

void HistoryWriterThread::work()
{
    sinceReport.start();
    bool ending = false;
    while (!ending) {
        quint64 flush = 0;
        waitForWork(&ending, &flush);
        if (ending) {
            addEnd();
        }
        const bool written = writeWaiting();
        report(ending);
        const QMutexLocker lock(&waiting.mutex);
        waiting.flushed = written;
        waiting.flushesDone = ending ? waiting.flushesAsked : flush;
        waiting.changed.wakeAll();
    }
}

void HistoryWriterThread::waitForWork(bool *ending, quint64 *flush)
{
    const QMutexLocker lock(&waiting.mutex);
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        *ending = waiting.state == HistoryWaiting::State::Ending;
        *flush = waiting.flushesAsked;
        // Half full: an early commit loses less than a full queue, unless commits fail anyway.
        const bool full = reported.isEmpty() && waiting.queue.bytes() > settings.queueLimit / 2;
        const int interval = reported.isEmpty() ? settings.commitEvery
                                                : std::max(settings.commitEvery, retryEvery);
        const qint64 left = interval - waited.elapsed();
        if (*ending || *flush != waiting.flushesDone || full || left <= 0) {
            return;
        }
        waiting.changed.wait(&waiting.mutex, static_cast<unsigned long>(left));
    }
}

bool HistoryWriterThread::writeWaiting()
{
    checkFile();
    if (!connection && !connectDatabase()) {
        trouble(failure);
        return false;
    }
    if (replaced) {
        replaced = false;
        addStart(HistoryEvent::Kind::DatabaseReplaced,
                 QStringLiteral("the file was removed or exchanged while it was being written"));
    }
    bool more = true;
    while (more) {
        if (!writeBatch(batch, &more)) {
            trouble(place.shown() + QLatin1Char(' ') + connection->lastError());
            disconnectDatabase(); // whatever broke, a new connection begins from what is stored
            return false;
        }
    }
    trouble({});
    return true;
}

bool HistoryWriterThread::writeBatch(size_t most, bool *more)
{
    std::vector<QueuedSample> samples;
    std::vector<HistoryEvent> events;
    std::vector<HistorySeries> series;
    HistoryQueue::Loss loss;
    {
        const QMutexLocker lock(&waiting.mutex);
        loss = waiting.queue.loss();
        waiting.queue.take(most, &samples, &events);
        series = waiting.series;
    }
    if (samples.empty() && events.empty() && loss.number == 0) {
        *more = false;
        keepLimits(0);
        return true;
    }
    const qint64 time = uniqueNow();
    if (loss.number > 0) {
        HistoryEvent event;
        event.time = time;
        event.kind = HistoryEvent::Kind::SamplesDropped;
        event.from = loss.from;
        event.until = loss.until;
        event.number = loss.number;
        event.text = dropReason;
        events.push_back(event);
    }
    const bool written = store->write(samples, events, series, time);
    if (loss.number > 0) {
        events.pop_back();
    }
    {
        const QMutexLocker lock(&waiting.mutex);
        if (written) {
            waiting.queue.settle();
            waiting.queue.recorded(loss);
        } else {
            waiting.queue.giveBack(&samples, &events);
        }
        *more = written && !waiting.queue.isEmpty();
    }
    if (written) {
        keepLimits(samples.size());
    }
    return written;
}

void HistoryWriterThread::keepLimits(size_t written)
{
    const int rows = std::max(removedAtLeast, 2 * int(written));
    qint64 before = std::numeric_limits<qint64>::min();
    // What could not be removed now is tried again; writing will say what is wrong.
    retention->step(now(), rows, &before);
    store->forgetSummariesBefore(before);
}

// Of a start, and of a start in another file: what lies between is unknown.
void HistoryWriterThread::addStart(HistoryEvent::Kind kind, const QString &text)
{
    HistoryEvent event;
    event.time = uniqueNow();
    event.kind = kind;
    event.until = event.time;
    event.text = text;
    store->newestTime(&event.from);
    const QMutexLocker lock(&waiting.mutex);
    waiting.queue.add(event);
}

void HistoryWriterThread::addEnd()
{
    HistoryEvent event;
    event.time = uniqueNow();
    event.kind = HistoryEvent::Kind::RecorderEnded;
    const QMutexLocker lock(&waiting.mutex);
    waiting.queue.add(event);
}

void HistoryWriterThread::trouble(const QString &reason)
{
    if (!reason.isEmpty()) {
        dropReason = reason;
    }
    if (reason.isEmpty() != reported.isEmpty()) {
        Q_EMIT troubleChanged(reason);
    }
    reported = reason;
}

void HistoryWriterThread::report(bool always)
{
    qint64 dropped = 0;
    {
        const QMutexLocker lock(&waiting.mutex);
        dropped = waiting.queue.droppedEver();
    }
    if (dropped == droppedReported
        || !(always || droppedReported == 0 || sinceReport.hasExpired(settings.reportEvery))) {
        return;
    }
    Q_EMIT samplesDropped(dropped - droppedReported,
                          dropReason.isEmpty() ? QStringLiteral("the database is too slow")
                                               : dropReason);
    droppedReported = dropped;
    sinceReport.restart();
}

qint64 HistoryWriterThread::now() const
{
    if (settings.clock) {
        return settings.clock();
    }
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// Events of one kind at one time would be taken for the same event.
qint64 HistoryWriterThread::uniqueNow()
{
    const qint64 time = now();
    const bool isNear = time <= lastEventTime && lastEventTime - time < 1'000'000'000;
    lastEventTime = isNear ? lastEventTime + 1 : time;
    return lastEventTime;
}
