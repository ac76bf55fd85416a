// SPDX-License-Identifier: MIT
// Puts many rows into the table of samples with few statements.
#ifndef HISTORYROWS_H
#define HISTORYROWS_H

#include "HistoryConnection.h"

#include <QByteArray>
#include <QSet>

#include <vector>

struct HistoryRow
{
    qint64 series;
    qint64 time;
    int turn;
    QVariant value; ///< as HistoryValueCodec stores it
    int error;
    bool late;
};

/// Rows are in the table after flush(), not before. Lives no longer than its connection.
class HistoryRows
{
public:
    explicit HistoryRows(HistoryConnection &connection);

    bool add(HistoryRow row);
    bool flush();
    /// Forgets rows that were not flushed.
    void clear();

private:
    bool flushBound();
    bool flushArrays();
    bool makeDays();
    bool bind(QSqlQuery &statement, size_t first, size_t count);

    HistoryConnection &connection;
    std::vector<HistoryRow> rows;
    QSqlQuery single;
    QSqlQuery several;
    bool prepared = false;
    QSet<qint64> days; ///< with a partition, as far as is known
};

#endif
