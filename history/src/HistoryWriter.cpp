// SPDX-License-Identifier: MIT
// Appends samples and events to a history: the callers' side.
#include "HistoryWriter.h"

#include "HistoryValueCodec.h"
#include "HistoryWriterThread.h"

#include <QHash>

#include <utility>

class HistoryWriter::Private
{
public:
    explicit Private(HistorySettings chosen)
        : settings(std::move(chosen))
        , waiting(settings.queueLimit)
    {
    }

    QString problem() const;
    void end();

    const HistorySettings settings;
    HistoryWaiting waiting;
    std::unique_ptr<HistoryWriterThread> thread;
    QHash<QString, int> numbers; ///< by description; under the same mutex
    QString error;
};

namespace {

constexpr int longestValue = 64 * 1024;
constexpr qint64 farthest = 9'200'000'000'000'000'000; // the rest of an int64 is left to rounding

bool isTooLong(const QVariant &value)
{
    return (value.userType() == QMetaType::QString && value.toString().size() > longestValue)
        || (value.userType() == QMetaType::QByteArray && value.toByteArray().size() > longestValue);
}

QString keyOf(const HistorySeries &series)
{
    const QChar separator(0);
    return QString::number(int(series.type)) + separator + series.selector + separator + series.unit
        + separator + series.description;
}

} // namespace

QString HistoryWriter::Private::problem() const
{
    if (settings.commitEvery < 1 || settings.commitEvery > 3'600'000) {
        return QStringLiteral("the commit interval is %1 ms; expected 1 to 3600000")
            .arg(settings.commitEvery);
    }
    if (settings.queueLimit < 65536) {
        return QStringLiteral("the limit of the queue is %1 bytes; expected at least 65536")
            .arg(settings.queueLimit);
    }
    if (settings.maxSize != 0 && settings.maxSize < qint64(16) * 1024 * 1024) {
        return QStringLiteral("the largest size is %1 bytes; expected at least 16777216, or 0 for "
                              "no limit")
            .arg(settings.maxSize);
    }
    if (settings.keep < 0) {
        return QStringLiteral("the age to keep is negative; expected nanoseconds, or 0 for all");
    }
    return {};
}

void HistoryWriter::Private::end()
{
    if (!thread) {
        return;
    }
    {
        const QMutexLocker lock(&waiting.mutex);
        if (waiting.state == HistoryWaiting::State::Running) {
            waiting.state = HistoryWaiting::State::Ending;
        }
        waiting.changed.wakeAll();
    }
    thread->wait();
    thread.reset();
}

HistoryWriter::HistoryWriter(HistorySettings settings, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(std::move(settings)))
{
}

HistoryWriter::~HistoryWriter()
{
    d->end();
}

bool HistoryWriter::open()
{
    if (d->thread) {
        return true;
    }
    d->error = d->problem();
    if (!d->error.isEmpty()) {
        return false;
    }
    d->waiting.state = HistoryWaiting::State::Opening;
    d->thread = std::make_unique<HistoryWriterThread>(d->settings, d->waiting);
    connect(d->thread.get(), &HistoryWriterThread::samplesDropped, this,
            &HistoryWriter::samplesDropped, Qt::DirectConnection);
    connect(d->thread.get(), &HistoryWriterThread::troubleChanged, this,
            &HistoryWriter::troubleChanged, Qt::DirectConnection);
    d->thread->start();
    QMutexLocker lock(&d->waiting.mutex);
    while (d->waiting.state == HistoryWaiting::State::Opening) {
        d->waiting.changed.wait(&d->waiting.mutex);
    }
    if (d->waiting.state == HistoryWaiting::State::Running) {
        return true;
    }
    d->error = d->waiting.error;
    lock.unlock();
    d->end();
    return false;
}

QString HistoryWriter::errorText() const
{
    return d->error;
}

int HistoryWriter::addSeries(const HistorySeries &series)
{
    const QString key = keyOf(series);
    const QMutexLocker lock(&d->waiting.mutex);
    const auto known = d->numbers.constFind(key);
    if (known != d->numbers.constEnd()) {
        return *known;
    }
    const int number = int(d->waiting.series.size());
    d->waiting.series.push_back(series);
    d->numbers.insert(key, number);
    return number;
}

bool HistoryWriter::append(int series, const HistorySample &sample)
{
    const QMutexLocker lock(&d->waiting.mutex);
    HistoryWaiting &waiting = d->waiting;
    if (series < 0 || size_t(series) >= waiting.series.size()
        || !HistoryValueCodec::fits(waiting.series[size_t(series)].type, sample.value)
        || isTooLong(sample.value) || sample.time > farthest || sample.time < -farthest) {
        return false;
    }
    waiting.queue.add({series, int(sample.errorType), sample.time, sample.value});
    if (waiting.queue.bytes() > d->settings.queueLimit / 2) {
        waiting.changed.wakeAll();
    }
    return true;
}

void HistoryWriter::append(const HistoryEvent &event)
{
    const QMutexLocker lock(&d->waiting.mutex);
    d->waiting.queue.add(event);
}

bool HistoryWriter::flush()
{
    QMutexLocker lock(&d->waiting.mutex);
    HistoryWaiting &waiting = d->waiting;
    if (waiting.state != HistoryWaiting::State::Running) {
        return false;
    }
    const quint64 mine = ++waiting.flushesAsked;
    waiting.changed.wakeAll();
    while (waiting.flushesDone < mine) {
        waiting.changed.wait(&waiting.mutex);
    }
    return waiting.flushed;
}

qint64 HistoryWriter::dropped() const
{
    const QMutexLocker lock(&d->waiting.mutex);
    return d->waiting.queue.droppedEver();
}

qint64 HistoryWriter::waitingBytes() const
{
    const QMutexLocker lock(&d->waiting.mutex);
    return d->waiting.queue.bytes();
}
