// SPDX-License-Identifier: MIT
// What a reader of a history keeps, and the queries that its sources share.
#ifndef HISTORYREADERPRIVATE_H
#define HISTORYREADERPRIVATE_H

#include "HistoryConnection.h"
#include "HistoryPieces.h"
#include "HistoryReader.h"

struct StoredSeries
{
    qint64 id = 0;
    HistorySeries series;
};

class HistoryReader::Private
{
public:
    bool connectDatabase();
    bool isCurrent() const;
    /// Runs a query at one moment of the database.
    bool read(const std::function<bool()> &query);
    bool check(bool good, const QString &problem);

    bool find(const QString &selector, QVector<StoredSeries> *found);
    bool narrow(const QVector<StoredSeries> &all, qint64 *from, qint64 *until);
    bool pieces(const QVector<StoredSeries> &all, const HistoryGrid &grid,
                QVector<HistoryPiece> *found);
    bool samples(const QVector<StoredSeries> &all, qint64 from, qint64 until,
                 const std::function<bool(const HistorySample &)> &take);

    HistoryPlace place;
    HistoryFile::Identity file;
    std::unique_ptr<HistoryConnection> connection;
    bool isNamed = false;
    QString error;
    int version = 0;
};

#endif
