// SPDX-License-Identifier: MIT
// Looks back: samples, pieces, events, gaps and what a history holds.
#ifndef HISTORYREADER_H
#define HISTORYREADER_H

#include "HistoryTypes.h"

#include <QStringList>

#include <functional>
#include <memory>

/// Reads a history, beside its writer and any number of other readers.
///
/// A database is opened for reading alone and never changed, not even upgraded. Every range is
/// [from, until), with from before until. Results are those of one moment for each call.
///
/// Every query returns false when the database fails it; errorText() then says why.
///
/// Threads: use each reader in the thread that opened it. Queries block.
class HistoryReader
{
public:
    HistoryReader();
    ~HistoryReader();
    HistoryReader(const HistoryReader &) = delete;
    HistoryReader &operator=(const HistoryReader &) = delete;

    /// Opens a database.
    ///
    /// @param database  as in HistorySettings::database
    /// @returns false when it cannot be read; errorText() names it, what is wrong and what to do
    bool open(const QString &database);

    QString errorText() const;

    /// Selectors with at least one series, in the order of their text.
    bool selectors(QStringList *found);

    /// Series of one selector, oldest first; none for an unknown one.
    bool series(const QString &selector, QVector<HistorySeries> *found);

    /// Hands out the samples of one selector in the order of their time, those of one time in the
    /// order in which they were written.
    ///
    /// @param take  called for each; returns false to end, which is not an error. Must not use
    ///              this reader.
    bool samples(const QString &selector, qint64 from, qint64 until,
                 const std::function<bool(const HistorySample &)> &take);

    /// The newest sample before a time: what held at its beginning.
    ///
    /// @param found  stays as it is, and its time too, when there is none
    bool sampleBefore(const QString &selector, qint64 time, HistorySample *found);

    /// At most that many pieces that show the whole range: each with first, last, least and
    /// greatest value. Long ranges of many samples are read from summaries, so they take about as
    /// long as short ones; the pieces begin and end at round times then, the outer ones at the
    /// range's own.
    ///
    /// @param points  1 to 100,000
    /// @param found   pieces with samples, in order; empty ones are left out
    bool points(const QString &selector, qint64 from, qint64 until, int points,
                QVector<HistoryPiece> *found);

    /// Pieces of equal length from @p from on, the last one cut at @p until; empty ones are left
    /// out.
    ///
    /// @param interval  ns, at least 1; at most 1,000,000 pieces
    bool aggregates(const QString &selector, qint64 from, qint64 until, qint64 interval,
                    QVector<HistoryPiece> *found);

    /// Events of all subjects whose time, or whose time from and until, touches the range.
    bool events(qint64 from, qint64 until, QVector<HistoryEvent> *found);

    /// Times within the range in which nothing is known of a selector: its source was lost, no
    /// recorder ran, samples were dropped. Cut at the range, in order, overlapping ones apart.
    bool gaps(const QString &selector, qint64 from, qint64 until, QVector<HistoryGap> *found);

    /// What the database holds. Counts every sample, so it takes its time.
    bool info(HistoryInfo *found);

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif
