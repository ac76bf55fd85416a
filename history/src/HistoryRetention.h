// SPDX-License-Identifier: MIT
// Removes what is too old or too much, in small pieces.
#ifndef HISTORYRETENTION_H
#define HISTORYRETENTION_H

#include "HistoryConnection.h"

/// Used in the writer's thread, between its transactions.
class HistoryRetention
{
public:
    /// @param keep     ns; 0 keeps all
    /// @param maxSize  bytes; 0 for no limit
    HistoryRetention(HistoryConnection &connection, qint64 keep, qint64 maxSize);

    /// Removes a piece, if anything has to go.
    ///
    /// @param rows    about as many samples as may be removed
    /// @param before  set to the time before which something was removed; stays as it is otherwise
    /// @returns false when the database failed it
    bool step(qint64 now, int rows, qint64 *before);

private:
    bool removeBefore(qint64 time, int rows);
    bool removeOf(qint64 series, qint64 time, int *rows);
    bool removeTraces(qint64 time);
    bool shrink();
    bool size(qint64 *used, qint64 *whole);
    bool oldest(qint64 *first, qint64 *last);
    bool number(const QString &statement, qint64 *value);
    bool stepOnServer(qint64 now, qint64 *before);

    HistoryConnection &connection;
    qint64 keep;
    qint64 maxSize;
    qint64 pending = 0; ///< time before which samples still wait to be removed; 0: none
    qint64 removed = 0; ///< time before which all are gone
};

#endif
