// SPDX-License-Identifier: MIT
// The cycle of a recorder, and the events that it finds.
#include "HistoryRecorder.h"

#include "HistoryWriter.h"
#include "RecordedLeaf.h"
#include "SelectorHandlerProcessValue.h"

#include <QJsonDocument>
#include <QMap>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
constexpr qint64 longestCycle = 3'600'000; // ms

qint64 systemTime()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

int cycleOf(const QVector<RecordedSelector> &selectors)
{
    qint64 shortest = longestCycle;
    for (const RecordedSelector &selector : selectors) {
        shortest = std::min(shortest, selector.every / nanosecondsPerMillisecond);
    }
    return static_cast<int>(std::max<qint64>(1, shortest));
}

QVector<QString> urlsOf(const QVector<RecordedSelector> &selectors)
{
    QVector<QString> urls;
    for (const RecordedSelector &selector : selectors) {
        urls.append(selector.url);
    }
    return urls;
}

} // namespace

class HistoryRecorder::Private
{
public:
    struct Source
    {
        QVector<int> leaves; ///< positions
        bool isLost = false;
    };

    Private(const QVector<RecordedSelector> &selectors, HistoryWriter &writer)
        : writer(writer)
        , handler(nullptr)
        , cycle(cycleOf(selectors))
    {
        // Timers are not exact: a cycle that comes a little early counts.
        const qint64 slack = cycle * nanosecondsPerMillisecond / 2;
        for (int i = 0; i < selectors.size(); ++i) {
            leaves.emplace_back(selectors.at(i), slack);
            sources[leaves.back().source()].leaves.append(i);
        }
    }

    void describe(const QVector<int> &indices);
    void note(HistoryEvent::Kind kind, const QString &subject, qint64 time,
              const QString &text = {});
    void follow(const QString &name, Source &source, const QVector<ProcessValue> &values,
                qint64 now);
    void followLeaf(RecordedLeaf &leaf, bool isLost, qint64 now);

    HistoryWriter &writer;
    std::function<qint64()> clock;
    SelectorHandlerProcessValue handler;
    std::vector<RecordedLeaf> leaves;
    QMap<QString, Source> sources; ///< by the beginning of their URLs
    const int cycle; ///< ms
    QTimer timer;
};

void HistoryRecorder::Private::note(HistoryEvent::Kind kind, const QString &subject, qint64 time,
                                    const QString &text)
{
    HistoryEvent event;
    event.time = time;
    event.kind = kind;
    event.subject = subject;
    event.text = text;
    writer.append(event);
}

void HistoryRecorder::Private::describe(const QVector<int> &indices)
{
    QMap<QString, QStringList> changes;
    for (const int i : indices) {
        RecordedLeaf &leaf = leaves[size_t(i)];
        const QByteArray text = handler.getPropertyAsJsonString(i).toUtf8();
        const QStringList names = leaf.describe(QJsonDocument::fromJson(text).object());
        if (!names.isEmpty()) {
            const QString path = leaf.url().mid(leaf.source().size() + 1);
            changes[leaf.source()].append(
                QStringLiteral("%1: %2").arg(path, names.join(QStringLiteral(", "))));
        }
    }
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        note(HistoryEvent::Kind::DescriptionChanged, change.key(), clock(),
             change->join(QStringLiteral("; ")));
    }
}

void HistoryRecorder::Private::followLeaf(RecordedLeaf &leaf, bool isLost, qint64 now)
{
    if (isLost == leaf.outcome.isLost) {
        return;
    }
    leaf.outcome.isLost = isLost;
    leaf.forget();
    note(isLost ? HistoryEvent::Kind::SourceLost : HistoryEvent::Kind::SourceReturned, leaf.url(),
         now);
}

void HistoryRecorder::Private::follow(const QString &name, Source &source,
                                      const QVector<ProcessValue> &values, qint64 now)
{
    const auto isLost = [&](int i) { return RecordedLeaf::isLost(values.at(i)); };
    const bool allLost = std::all_of(source.leaves.cbegin(), source.leaves.cend(), isLost);
    if (allLost != source.isLost) {
        source.isLost = allLost;
        note(allLost ? HistoryEvent::Kind::SourceLost : HistoryEvent::Kind::SourceReturned, name,
             now);
        for (const int i : qAsConst(source.leaves)) {
            leaves[size_t(i)].forget();
        }
    }
    for (const int i : qAsConst(source.leaves)) {
        if (!source.isLost) {
            followLeaf(leaves[size_t(i)], isLost(i), now);
        }
    }
}

HistoryRecorder::HistoryRecorder(const QVector<RecordedSelector> &selectors, HistoryWriter &writer,
                                 std::function<qint64()> clock, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(selectors, writer))
{
    d->clock = clock ? std::move(clock) : systemTime;
    const auto describe = [this](const QVector<int> &indices) { d->describe(indices); };
    connect(&d->handler,
            qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged),
            this, describe);
    connect(&d->handler, qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged),
            this, describe);
    connect(&d->timer, &QTimer::timeout, this, &HistoryRecorder::look);
    d->handler.setSelectorUrls(urlsOf(selectors));
    QVector<int> all;
    for (int i = 0; i < selectors.size(); ++i) {
        all.append(i);
    }
    d->describe(all);
}

HistoryRecorder::~HistoryRecorder() = default;

void HistoryRecorder::start()
{
    d->timer.setTimerType(Qt::PreciseTimer);
    d->timer.start(d->cycle);
    look();
}

void HistoryRecorder::look()
{
    const qint64 now = d->clock(); // before the values: none of them is older than it looks
    const QVector<ProcessValue> values = d->handler.getValues();
    for (auto source = d->sources.begin(); source != d->sources.end(); ++source) {
        d->follow(source.key(), *source, values, now);
    }
    QVector<int> found;
    for (int i = 0; i < values.size(); ++i) {
        if (!d->leaves[size_t(i)].isDescribed() && !RecordedLeaf::isLost(values.at(i))) {
            found.append(i);
        }
    }
    d->describe(found);
    for (int i = 0; i < values.size(); ++i) {
        d->leaves[size_t(i)].take(values.at(i), now, d->writer);
    }
}

HistoryRecorder::Outcome HistoryRecorder::outcome(int index) const
{
    const RecordedLeaf &leaf = d->leaves[size_t(index)];
    Outcome outcome = leaf.outcome;
    const auto source = d->sources.constFind(leaf.source());
    outcome.isLost = outcome.isLost || (source != d->sources.constEnd() && source->isLost);
    return outcome;
}
