// SPDX-License-Identifier: MIT
// Events, and the gaps that follow from them.
#include "HistoryGaps.h"

#include "HistoryColumns.h"

#include <QHash>
#include <QSqlError>

#include <algorithm>

using Kind = HistoryEvent::Kind;

namespace {

bool concerns(const HistoryEvent &event, const QString &selector)
{
    return event.subject.isEmpty() || selector == event.subject
        || (selector.startsWith(event.subject)
            && selector.at(event.subject.size()) == QLatin1Char('/'));
}

// Puts together what begins with one event and ends with another.
class Collector
{
public:
    Collector(qint64 from, qint64 until)
        : from(from)
        , until(until)
    {
    }

    void take(const HistoryEvent &event)
    {
        switch (event.kind) {
        case Kind::SourceLost:
            if (!lost.contains(event.subject)) {
                lost.insert(event.subject, event.time);
            }
            break;
        case Kind::SourceReturned:
            if (lost.contains(event.subject)) {
                add(lost.take(event.subject), event.time, Kind::SourceLost, 0);
            }
            break;
        case Kind::RecorderEnded:
            ended = event.time;
            stopped = true;
            break;
        case Kind::RecorderStarted:
            start(event);
            break;
        case Kind::SamplesDropped:
        case Kind::DatabaseReplaced:
            add(event.from, event.until, event.kind, event.number);
            break;
        case Kind::DescriptionChanged:
        case Kind::ClockSetBack:
            break;
        }
    }

    QVector<HistoryGap> finish()
    {
        for (const qint64 since : qAsConst(lost)) {
            add(since, until, Kind::SourceLost, 0);
        }
        if (stopped) {
            add(ended, until, Kind::RecorderEnded, 0);
        }
        std::sort(gaps.begin(), gaps.end(), [](const HistoryGap &left, const HistoryGap &right) {
            return left.from != right.from ? left.from < right.from : left.until < right.until;
        });
        return gaps;
    }

private:
    // A recorder that starts says anew which sources are lost.
    void start(const HistoryEvent &event)
    {
        for (const qint64 since : qAsConst(lost)) {
            add(since, event.time, Kind::SourceLost, 0);
        }
        lost.clear();
        if (stopped || event.from > 0) {
            add(stopped ? ended : event.from, event.until,
                stopped ? Kind::RecorderEnded : Kind::RecorderStarted, 0);
        }
        stopped = false;
    }

    // What happened at one instant, such as a single dropped sample, lasts for one nanosecond.
    void add(qint64 begin, qint64 end, Kind kind, qint64 number)
    {
        const HistoryGap gap{std::max(begin, from), std::min(std::max(end, begin + 1), until), kind,
                             number};
        if (gap.from < gap.until) {
            gaps << gap;
        }
    }

    qint64 from;
    qint64 until;
    QHash<QString, qint64> lost; ///< subjects, since when
    qint64 ended = 0;
    bool stopped = false;
    QVector<HistoryGap> gaps;
};

} // namespace

bool HistoryGaps::read(HistoryConnection &connection, qint64 until, QVector<HistoryEvent> *found)
{
    QSqlQuery query = connection.query();
    // A loss of samples is recorded after the times that it speaks of.
    query.exec(QStringLiteral("SELECT time, kind, subject, since, until, number, text FROM events "
                              "WHERE time < %1 OR (until > 0 AND since < %1) ORDER BY time")
                   .arg(until));
    while (query.next()) {
        HistoryEvent event;
        event.time = query.value(0).toLongLong();
        event.subject = query.value(2).toString();
        event.from = query.value(3).toLongLong();
        event.until = query.value(4).toLongLong();
        event.number = query.value(5).toLongLong();
        event.text = query.value(6).toString();
        if (HistoryEvents::kindOf(query.value(1).toString(), &event.kind)) {
            found->append(event);
        }
    }
    return connection.note(query);
}

bool HistoryGaps::touches(const HistoryEvent &event, qint64 from, qint64 until)
{
    return (event.time >= from && event.time < until)
        || (event.until > 0 && std::max(event.from, event.until) >= from
            && std::min(event.from, event.until) < until);
}

QVector<HistoryGap> HistoryGaps::of(const QVector<HistoryEvent> &events, const QString &selector,
                                    qint64 from, qint64 until)
{
    Collector collector(from, until);
    for (const HistoryEvent &event : events) {
        if (concerns(event, selector)) {
            collector.take(event);
        }
    }
    return collector.finish();
}
