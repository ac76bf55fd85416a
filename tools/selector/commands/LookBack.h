// SPDX-License-Identifier: MIT
// What a history says of a time range, row by row.
#ifndef LOOKBACK_H
#define LOOKBACK_H

#include "HistoryReader.h"

#include <functional>

/// What is asked for.
struct LookBack
{
    qint64 from = 0; ///< nanoseconds since 1970-01-01 00:00 UTC
    qint64 until = 0; ///< not contained any more
    int points = 0; ///< above 0: so many pieces at most
    qint64 interval = 0; ///< above 0: pieces of that length, in nanoseconds
    QStringList aggregates; ///< what is shown of each piece

    bool inPieces() const { return points > 0 || interval > 0; }
};

/// "first", "last", "min", "max" and "mean".
const QStringList &allAggregates();

/// One thing that a history says.
struct PastRow
{
    enum Kind {
        Held, ///< the sample that held when the range began, written before
        Sample,
        Piece,
        Event,
        Gap,
    };

    Kind kind = Sample;
    qint64 time = 0; ///< of a piece and a gap the beginning
    HistorySample sample; ///< of the first two
    HistoryPiece piece;
    HistoryEvent event;
    HistoryGap gap;
};

/// "held", "sample", "piece", "event", "gap".
QString kindName(PastRow::Kind kind);

/// A selector of which something was recorded.
struct PastSelector
{
    QString url;
    QString label; ///< what the person calls it; empty without
    QVector<HistorySeries> series; ///< oldest first

    /// The units of a row's samples, one after the other; empty ones too.
    QStringList unitsOf(const PastRow &row) const;
};

/// Hands out the rows of one selector in the order of their time. Of what has the same time, events
/// come before gaps, and samples last.
///
/// @param take  returns false to end, which is not an error
/// @returns false when the database failed; the reader says why
bool lookBack(HistoryReader &reader, const LookBack &asked, const QString &url,
              const std::function<bool(const PastRow &)> &take);

#endif
