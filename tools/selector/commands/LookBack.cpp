// SPDX-License-Identifier: MIT
// Merges samples or pieces with events and gaps.
#include "LookBack.h"

#include <algorithm>
#include <array>

namespace {

bool concerns(const HistoryEvent &event, const QString &url)
{
    return event.subject.isEmpty() || url == event.subject
        || url.startsWith(event.subject + QLatin1Char('/'));
}

PastRow eventRow(const HistoryEvent &event)
{
    PastRow row;
    row.kind = PastRow::Event;
    row.time = event.time;
    row.event = event;
    return row;
}

PastRow gapRow(const HistoryGap &gap)
{
    PastRow row;
    row.kind = PastRow::Gap;
    row.time = gap.from;
    row.gap = gap;
    return row;
}

PastRow sampleRow(const HistorySample &sample, PastRow::Kind kind = PastRow::Sample)
{
    PastRow row;
    row.kind = kind;
    row.time = sample.time;
    row.sample = sample;
    return row;
}

PastRow pieceRow(const HistoryPiece &piece)
{
    PastRow row;
    row.kind = PastRow::Piece;
    row.time = piece.from;
    row.piece = piece;
    return row;
}

// Events and gaps: few beside the samples.
bool readExplanations(HistoryReader &reader, const LookBack &asked, const QString &url,
                      QVector<PastRow> &rows)
{
    QVector<HistoryEvent> events;
    QVector<HistoryGap> gaps;
    if (!reader.events(asked.from, asked.until, &events)
        || !reader.gaps(url, asked.from, asked.until, &gaps)) {
        return false;
    }
    for (const HistoryEvent &event : qAsConst(events)) {
        // What lies outside shows as a gap, where it leaves one within the range.
        if (concerns(event, url) && event.time >= asked.from && event.time < asked.until) {
            rows.append(eventRow(event));
        }
    }
    for (const HistoryGap &gap : qAsConst(gaps)) {
        rows.append(gapRow(gap));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const PastRow &left, const PastRow &right) {
        return left.time < right.time;
    });
    return true;
}

// A value holds until another one comes, but not beyond a gap.
bool readHeld(HistoryReader &reader, const LookBack &asked, const QString &url,
              QVector<PastRow> &rows)
{
    HistorySample sample;
    sample.time = asked.from;
    QVector<HistoryGap> gaps;
    if (!reader.sampleBefore(url, asked.from, &sample)) {
        return false;
    }
    if (sample.time == asked.from) { // none was found
        return true;
    }
    if (!reader.gaps(url, sample.time, asked.from, &gaps)) {
        return false;
    }
    if (gaps.isEmpty()) {
        rows.prepend(sampleRow(sample, PastRow::Held));
    }
    return true;
}

bool readMain(HistoryReader &reader, const LookBack &asked, const QString &url,
              const std::function<bool(const PastRow &)> &take)
{
    if (!asked.inPieces()) {
        return reader.samples(url, asked.from, asked.until,
                              [&](const HistorySample &sample) { return take(sampleRow(sample)); });
    }
    QVector<HistoryPiece> pieces;
    const bool done = asked.points > 0
        ? reader.points(url, asked.from, asked.until, asked.points, &pieces)
        : reader.aggregates(url, asked.from, asked.until, asked.interval, &pieces);
    for (const HistoryPiece &piece : qAsConst(pieces)) {
        if (!take(pieceRow(piece))) {
            break;
        }
    }
    return done;
}

} // namespace

const QStringList &allAggregates()
{
    static const QStringList all{QStringLiteral("first"), QStringLiteral("last"),
                                 QStringLiteral("min"), QStringLiteral("max"),
                                 QStringLiteral("mean")};
    return all;
}

QString kindName(PastRow::Kind kind)
{
    static constexpr std::array<const char *, 5> names{"held", "sample", "piece", "event", "gap"};
    return QString::fromLatin1(names.at(size_t(kind)));
}

QStringList PastSelector::unitsOf(const PastRow &row) const
{
    const bool isPiece = row.kind == PastRow::Piece;
    const qint64 first = isPiece ? row.piece.first.time : row.time;
    const qint64 last = isPiece ? row.piece.last.time : row.time;
    QStringList units;
    for (const HistorySeries &one : series) {
        // What had begun by then, up to the first sample, was replaced by the one behind it.
        if (one.since <= first || units.isEmpty()) {
            units = QStringList(one.unit);
        } else if (one.since <= last && one.unit != units.constLast()) {
            units.append(one.unit);
        }
    }
    return units;
}

bool lookBack(HistoryReader &reader, const LookBack &asked, const QString &url,
              const std::function<bool(const PastRow &)> &take)
{
    QVector<PastRow> explanations;
    if (!readExplanations(reader, asked, url, explanations)
        || (!asked.inPieces() && !readHeld(reader, asked, url, explanations))) {
        return false;
    }
    auto next = explanations.cbegin();
    bool goesOn = true;
    const auto takeUpTo = [&](qint64 time) {
        for (; goesOn && next != explanations.cend() && next->time <= time; ++next) {
            goesOn = take(*next);
        }
        return goesOn;
    };
    const bool done = readMain(reader, asked, url, [&](const PastRow &row) {
        goesOn = takeUpTo(row.time) && take(row);
        return goesOn;
    });
    takeUpTo(asked.until);
    return done;
}
