// SPDX-License-Identifier: MIT
// Sums a range up in pieces: from summaries where there are any, else from the samples.
#include "HistoryPieces.h"

#include "HistoryColumns.h"
#include "HistoryValueCodec.h"

#include <algorithm>

HistoryGrid HistoryGrid::ofPoints(qint64 from, qint64 until, int points)
{
    const quint64 length = quint64(until) - quint64(from);
    const qint64 exact = qint64((length - 1) / quint64(points)) + 1;
    HistoryGrid grid{from, until, from, exact};
    for (const qint64 width : HistoryLevels::width) {
        if (width > exact / 4) {
            break;
        }
        grid.start = HistoryLevels::piece(from, width) * width;
        grid.width = (exact + width - 1) / width * width;
        if (grid.index(until - 1) >= points) {
            grid.width += width; // the first piece begins before the range
        }
    }
    return grid;
}

qint64 HistoryGrid::index(qint64 time) const
{
    return qint64((quint64(time) - quint64(start)) / quint64(width));
}

qint64 HistoryGrid::pieceFrom(qint64 index) const
{
    return std::max(from, start + index * width);
}

qint64 HistoryGrid::pieceUntil(qint64 index) const
{
    const qint64 begin = start + index * width;
    return until - begin < width ? until : begin + width;
}

HistoryPieces::HistoryPieces(HistoryConnection &connection, const HistoryGrid &grid)
    : connection(connection)
    , grid(grid)
    , oldest(connection.query())
    , newest(connection.query())
{
    const QString ends = QStringLiteral("SELECT %1 FROM samples WHERE series = ? AND time >= ? AND "
                                        "time < ? ORDER BY time %2, turn %2 LIMIT 1");
    const QString columns = StoredSample::columns(connection.isSqlite());
    oldest.prepare(ends.arg(columns, QStringLiteral("ASC")));
    newest.prepare(ends.arg(columns, QStringLiteral("DESC")));
}

bool HistoryPieces::add(qint64 id, HistoryType valueType)
{
    series = id;
    type = valueType;
    parts.clear();
    int level = HistoryLevels::count - 1;
    while (level >= 0
           && (grid.width % HistoryLevels::width[size_t(level)] != 0
               || grid.start % HistoryLevels::width[size_t(level)] != 0)) {
        --level;
    }
    if (!cover(level, grid.from, grid.until)) {
        return false;
    }
    for (auto &[index, part] : parts) {
        if (!part.hasEnds && !findEnds(index, part)) {
            return false;
        }
        merge(index, part);
    }
    return true;
}

QVector<HistoryPiece> HistoryPieces::pieces() const
{
    QVector<HistoryPiece> all;
    all.reserve(int(found.size()));
    for (const auto &[index, piece] : found) {
        all << piece;
    }
    return all;
}

// Where a level has no summary, the next finer one is asked, and in the end the samples.
bool HistoryPieces::cover(int level, qint64 from, qint64 until)
{
    if (level < 0) {
        return scan(from, until);
    }
    const qint64 width = HistoryLevels::width[size_t(level)];
    const qint64 first = -HistoryLevels::piece(-from, width);
    const qint64 end = HistoryLevels::piece(until, width);
    std::map<qint64, HistorySummary> summaries;
    if (first < end && !readSummaries(level, first, end, &summaries)) {
        return false;
    }
    qint64 position = from;
    for (const auto &[piece, summary] : summaries) {
        if (piece * width > position && !cover(level - 1, position, piece * width)) {
            return false;
        }
        Part &part = parts[grid.index(piece * width)];
        part.sum.add(summary);
        part.hasEnds = false;
        position = (piece + 1) * width;
    }
    return position >= until || cover(level - 1, position, until);
}

bool HistoryPieces::readSummaries(int level, qint64 first, qint64 end,
                                  std::map<qint64, HistorySummary> *summaries)
{
    QSqlQuery query = connection.query();
    query.exec(QStringLiteral(
                   "SELECT piece, count, numbers, sum, least, least_time, greatest, greatest_time "
                   "FROM summaries WHERE series = %1 AND level = %2 AND piece >= %3 "
                   "AND piece < %4 ORDER BY piece")
                   .arg(series)
                   .arg(level)
                   .arg(first)
                   .arg(end));
    while (query.next()) {
        summaries->emplace_hint(
            summaries->end(), query.value(0).toLongLong(),
            HistorySummary{query.value(1).toLongLong(), query.value(2).toLongLong(),
                           query.value(3).toDouble(), query.value(4).toLongLong(),
                           query.value(5).toLongLong(), query.value(6).toLongLong(),
                           query.value(7).toLongLong()});
    }
    return connection.note(query);
}

bool HistoryPieces::scan(qint64 from, qint64 until)
{
    const bool sqlite = connection.isSqlite();
    QSqlQuery query = connection.stream();
    query.exec(
        QStringLiteral("SELECT %1 FROM samples WHERE series = %2 AND time >= %3 AND time < %4 "
                       "ORDER BY time, turn")
            .arg(StoredSample::columns(sqlite))
            .arg(series)
            .arg(from)
            .arg(until));
    Part *part = nullptr;
    qint64 end = from; // of the piece that it is
    while (query.next()) {
        StoredSample sample = StoredSample::read(query, sqlite);
        if (part == nullptr || sample.time >= end) {
            const qint64 index = grid.index(sample.time);
            part = &parts[index];
            end = grid.pieceUntil(index);
        }
        if (part->sum.count++ == 0) {
            part->first = sample;
        }
        qint64 rank = 0;
        if (sample.isGood() && HistoryValueCodec::storedRank(type, sample.value, &rank)) {
            part->sum.addNumber(rank, HistoryValueCodec::number(type, rank), sample.time);
        }
        part->last = std::move(sample);
    }
    return connection.note(query);
}

bool HistoryPieces::findEnds(qint64 index, Part &part)
{
    const qint64 from = grid.pieceFrom(index);
    const qint64 until = grid.pieceUntil(index);
    return findEnd(oldest, from, until, &part.first) && findEnd(newest, from, until, &part.last);
}

bool HistoryPieces::findEnd(QSqlQuery &query, qint64 from, qint64 until, StoredSample *end)
{
    const bool sqlite = connection.isSqlite();
    query.bindValue(0, series);
    query.bindValue(1, from);
    query.bindValue(2, until);
    query.exec();
    if (query.next()) {
        *end = StoredSample::read(query, sqlite);
    }
    const bool done = connection.note(query);
    query.finish();
    return done;
}

void HistoryPieces::merge(qint64 index, const Part &part)
{
    HistoryPiece &piece = found[index];
    const HistorySummary &sum = part.sum;
    if (piece.count == 0 || part.first.time < piece.first.time) {
        piece.first = part.first.decoded(type);
    }
    if (piece.count == 0 || part.last.time >= piece.last.time) {
        piece.last = part.last.decoded(type);
    }
    piece.from = grid.pieceFrom(index);
    piece.until = grid.pieceUntil(index);
    piece.count += sum.count;
    if (sum.numbers == 0) {
        return;
    }
    const QVariant least = HistoryValueCodec::ranked(type, sum.least);
    const QVariant greatest = HistoryValueCodec::ranked(type, sum.greatest);
    // Series of two types have no common rank: of those the nearest doubles are compared.
    if (piece.numbers == 0 || least.toDouble() < piece.least.toDouble()) {
        piece.least = least;
        piece.leastTime = sum.leastTime;
    }
    if (piece.numbers == 0 || greatest.toDouble() > piece.greatest.toDouble()) {
        piece.greatest = greatest;
        piece.greatestTime = sum.greatestTime;
    }
    piece.mean
        = (piece.mean * double(piece.numbers) + sum.sum) / double(piece.numbers + sum.numbers);
    piece.numbers += sum.numbers;
}

// Two numbers in one column: the database's driver takes its time for each.
QString StoredSample::columns(bool sqlite)
{
    return QStringLiteral("time, error * %1 + late, ")
               .arg(sqlite ? QStringLiteral("2") : QStringLiteral("2::bigint"))
        + HistoryColumns::value(sqlite);
}

StoredSample StoredSample::read(const QSqlQuery &query, bool sqlite)
{
    return {query.value(0).toLongLong(), query.value(1).toLongLong(),
            HistoryColumns::read(query, 2, sqlite)};
}

ProcessDataDefinitions::ErrorTypes StoredSample::errorType() const
{
    return ProcessDataDefinitions::ErrorTypes((marks - (marks & 1)) / 2);
}

HistorySample StoredSample::decoded(HistoryType type) const
{
    return {time, HistoryValueCodec::decode(type, value), errorType(), (marks & 1) != 0};
}
