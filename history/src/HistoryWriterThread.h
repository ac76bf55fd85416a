// SPDX-License-Identifier: MIT
// The thread that carries what waits into the database, and tries again when that fails.
#ifndef HISTORYWRITERTHREAD_H
#define HISTORYWRITERTHREAD_H

#include "HistoryQueue.h"
#include "HistoryRetention.h"
#include "HistoryWriter.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <memory>

/// What the writer and its thread share. One mutex guards all of it.
struct HistoryWaiting
{
    explicit HistoryWaiting(qint64 limit)
        : queue(limit)
    {
    }

    enum class State {
        Opening, // the database, for the first time
        Refused, // the first opening failed; the thread has ended
        Running,
        Ending, // asked to write what waits and end
    };

    QMutex mutex;
    QWaitCondition changed;
    State state = State::Opening;
    HistoryQueue queue;
    std::vector<HistorySeries> series;
    quint64 flushesAsked = 0;
    quint64 flushesDone = 0;
    bool flushed = true; ///< the last flush emptied the queue
    QString error;
};

class HistoryWriterThread : public QThread
{
    Q_OBJECT

public:
    HistoryWriterThread(const HistorySettings &settings, HistoryWaiting &waiting);

Q_SIGNALS:
    void samplesDropped(qint64 count, const QString &reason);
    void troubleChanged(const QString &reason);

protected:
    void run() override;

private:
    bool connectDatabase();
    void disconnectDatabase();
    void checkFile();
    void work();
    void waitForWork(bool *ending, quint64 *flush);
    bool writeWaiting();
    bool writeBatch(size_t most, bool *more);
    void keepLimits(size_t written);
    void addStart(HistoryEvent::Kind kind, const QString &text);
    void addEnd();
    void trouble(const QString &reason);
    void report(bool always);
    qint64 now() const;
    qint64 uniqueNow();

    const HistorySettings settings;
    HistoryWaiting &waiting;
    HistoryPlace place;
    HistoryFile::Identity file;
    bool replaced = false; ///< the file, since it was opened
    std::unique_ptr<HistoryConnection> connection;
    std::unique_ptr<HistoryStore> store;
    std::unique_ptr<HistoryRetention> retention;
    QString failure;
    QString reported; ///< the last trouble that was signalled; empty: none
    QString dropReason;
    QElapsedTimer sinceReport;
    qint64 droppedReported = 0;
    qint64 lastEventTime = 0;
};

#endif
