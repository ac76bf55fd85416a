// SPDX-License-Identifier: MIT
// Appends samples and events to a history and keeps its limits.
#ifndef HISTORYWRITER_H
#define HISTORYWRITER_H

#include "HistoryTypes.h"

#include <QObject>

#include <functional>
#include <memory>

/// Where a writer writes, and what it keeps.
struct HistorySettings
{
    /// "sqlite:FILE", "FILE", or "postgresql://user@host/database". The server's password is
    /// better kept where its client library looks for it than here.
    QString database;
    qint64 keep = 0; ///< age in ns after which samples and events go; 0 keeps all
    /// Bytes on disk above which the oldest samples go; 0 for no limit, else at least 16 MiB.
    qint64 maxSize = 0;
    int commitEvery = 1000; ///< ms between transactions, 1 to 3,600,000
    /// Bytes of samples that wait in memory, at least 64 KiB. Up to 10,000 events wait besides.
    qint64 queueLimit = qint64(32) * 1024 * 1024;
    int reportEvery = 60000; ///< ms between two signals about dropped samples
    std::function<qint64()> clock; ///< the present time; empty: the system's clock
};

/// Appends to a history from a thread of its own: no caller ever waits for a disk or a server.
///
/// What is appended waits in memory, and is written in one transaction each commit interval. While the
/// database cannot be written, samples go on waiting; beyond the queue's limit the oldest are dropped
/// and counted. As soon as writing works again, an event records how many were dropped and of which
/// times. The writer tries again each interval, for ever, also after the file was removed or the
/// server went away.
///
/// Threads: create, open and destroy it in one thread; everything else may be called in any.
/// Signals are emitted in the writer's own thread.
class HistoryWriter : public QObject
{
    Q_OBJECT

public:
    explicit HistoryWriter(HistorySettings settings, QObject *parent = nullptr);
    /// Writes what still waits, if the database lets it, and records the end as an event.
    ~HistoryWriter() override;

    /// Opens the database, makes or upgrades its tables, records the start, and starts writing.
    ///
    /// Only one writer at a time may have a database open.
    ///
    /// @returns false when that is impossible; errorText() says why. May then be called again.
    /// Threads: blocks for as long as the database takes.
    bool open();

    /// Why the last open() failed: what is wrong, what was expected, what to do.
    QString errorText() const;

    /// Names a series for append(). The database learns of it with its first sample.
    ///
    /// @returns a number from 0 on, valid for the life of this writer; the same one for an equal
    ///          description
    int addSeries(const HistorySeries &series);

    /// Takes one sample; never blocks for the database.
    ///
    /// A sample that equals one of the same series and time is stored once. One of the same time
    /// that differs in value or error type is stored beside it. One whose time lies before the
    /// newest of its series is stored and marked late.
    ///
    /// @returns false, and nothing is taken, when the series is unknown, the value is not of the
    ///          series' type (it may be invalid), or is a text or bytes of
    ///          more than 65,536 characters or bytes, or the time lies before 1678 or after 2261.
    bool append(int series, const HistorySample &sample);

    /// Takes an event. Beyond 10,000 that wait, the oldest are dropped and counted like samples.
    void append(const HistoryEvent &event);

    /// Waits until everything appended before is in the database.
    ///
    /// @returns false when writing failed; everything then goes on waiting
    bool flush();

    /// Samples and events dropped since this writer was made.
    qint64 dropped() const;

    /// Bytes of samples that wait in memory, at most the queue's limit.
    qint64 waitingBytes() const;

Q_SIGNALS:
    /// Samples were dropped since the last such signal; at most once in HistorySettings::reportEvery.
    void samplesDropped(qint64 count, const QString &reason);
    /// Writing begins to fail, for a reason; or works again, with an empty text.
    void troubleChanged(const QString &reason);

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif
