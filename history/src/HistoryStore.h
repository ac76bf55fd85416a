// SPDX-License-Identifier: MIT
// Writes batches of samples and events into an open database, each in one transaction.
#ifndef HISTORYSTORE_H
#define HISTORYSTORE_H

#include "HistoryConnection.h"
#include "HistoryRows.h"
#include "HistorySummary.h"
#include "HistoryTypes.h"

#include <array>
#include <vector>

/// A sample on its way to the database.
struct QueuedSample
{
    int series;
    int errorType;
    qint64 time;
    QVariant value;
};

/// Used in the writer's thread. Lives no longer than its connection.
class HistoryStore
{
public:
    explicit HistoryStore(HistoryConnection &connection);

    /// All or nothing. A batch whose outcome is unknown may be written again: what is there
    /// already is not written twice.
    ///
    /// @param names  series by their number
    bool write(const std::vector<QueuedSample> &samples, const std::vector<HistoryEvent> &events,
               const std::vector<HistorySeries> &names, qint64 now);

    /// Newest time of any sample or event; 0 in an empty database. False on failure.
    bool newestTime(qint64 *time);

    /// What was removed up to a time must not be summarised.
    void forgetSummariesBefore(qint64 time);

private:
    struct Open ///< a summary that grows
    {
        HistorySummary sum;
        qint64 piece = 0;
        bool whole = false; ///< it knows every sample of its piece
    };
    struct State
    {
        bool known = false;
        qint64 id = 0;
        HistoryType type = HistoryType::Float64;
        bool hasNewest = false;
        qint64 newest = 0;
        QVariant newestValue;
        int newestError = 0;
        bool behind = false; ///< its last sample was late
        std::array<Open, HistoryLevels::count> open;
    };
    struct Step ///< a clock that was set back, over all series of a batch
    {
        int series = 0;
        int number = 0; ///< of series
        qint64 from = 0;
        qint64 until = 0;
    };

    bool writeAll(const std::vector<QueuedSample> &samples, const std::vector<HistoryEvent> &events,
                  const std::vector<HistorySeries> &names, qint64 now);
    bool writeSample(State &state, const QueuedSample &sample);
    bool place(const State &state, HistoryRow &row, bool *there);
    bool find(State &state, const HistorySeries &series, qint64 since);
    bool findNewest(State &state);
    bool summarise(State &state, const QueuedSample &sample);
    bool close(State &state, int level);
    bool writeEvent(const HistoryEvent &event);
    bool writeStep(const Step &step, const std::vector<HistorySeries> &names, qint64 now);

    HistoryConnection &connection;
    HistoryRows rows;
    QSqlQuery summaryStatement;
    bool summaryPrepared = false;
    std::vector<State> states;
};

#endif
