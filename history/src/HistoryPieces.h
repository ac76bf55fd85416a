// SPDX-License-Identifier: MIT
// Sums a range up in pieces: from summaries where there are any, else from the samples.
#ifndef HISTORYPIECES_H
#define HISTORYPIECES_H

#include "HistoryConnection.h"
#include "HistorySummary.h"
#include "HistoryTypes.h"

#include <map>

/// Pieces of equal length within a range.
struct HistoryGrid
{
    qint64 from = 0; ///< of the range
    qint64 until = 0;
    qint64 start = 0; ///< of the first piece, not after from
    qint64 width = 1;

    /// At most that many pieces, of a length that summaries can be used for if they are long.
    static HistoryGrid ofPoints(qint64 from, qint64 until, int points);

    qint64 index(qint64 time) const;
    qint64 pieceFrom(qint64 index) const; ///< cut at the range
    qint64 pieceUntil(qint64 index) const;
};

/// A sample as its columns hold it: most are only counted and compared.
struct StoredSample
{
    qint64 time = 0;
    qint64 marks = 0; ///< error type and lateness
    QVariant value;

    /// What a select of samples needs for read().
    static QString columns(bool sqlite);
    static StoredSample read(const QSqlQuery &query, bool sqlite);

    bool isGood() const { return errorType() == ProcessDataDefinitions::NoError; }
    HistorySample decoded(HistoryType type) const;

private:
    ProcessDataDefinitions::ErrorTypes errorType() const;
};

/// Collects series after series of one selector.
class HistoryPieces
{
public:
    HistoryPieces(HistoryConnection &connection, const HistoryGrid &grid);

    bool add(qint64 id, HistoryType valueType);
    QVector<HistoryPiece> pieces() const;

private:
    struct Part ///< of one series in one piece
    {
        HistorySummary sum;
        StoredSample first;
        StoredSample last;
        bool hasEnds = true; ///< no summary is in it: first and last were met
    };

    bool cover(int level, qint64 from, qint64 until);
    bool readSummaries(int level, qint64 first, qint64 end,
                       std::map<qint64, HistorySummary> *summaries);
    bool scan(qint64 from, qint64 until);
    bool findEnds(qint64 index, Part &part);
    bool findEnd(QSqlQuery &query, qint64 from, qint64 until, StoredSample *end);
    void merge(qint64 index, const Part &part);

    HistoryConnection &connection;
    HistoryGrid grid;
    qint64 series = 0;
    HistoryType type = HistoryType::Float64;
    QSqlQuery oldest; ///< sample of a series in a range
    QSqlQuery newest;
    std::map<qint64, Part> parts;
    std::map<qint64, HistoryPiece> found;
};

#endif
