// SPDX-License-Identifier: MIT
// Removes what is too old or too much, in small pieces.
#include "HistoryRetention.h"

#include "HistorySchema.h"
#include "HistorySummary.h"

#include <QSqlError>

#include <algorithm>

HistoryRetention::HistoryRetention(HistoryConnection &connection, qint64 keep, qint64 maxSize)
    : connection(connection)
    , keep(keep)
    , maxSize(maxSize)
{
    if (connection.isSqlite() && maxSize > 0) {
        // The log beside the file counts too. It is folded into the file after this many pages.
        const qint64 pages = std::clamp<qint64>(maxSize / 16 / 4096, 16, 1000);
        connection.run(QStringLiteral("PRAGMA wal_autocheckpoint=%1").arg(pages));
        connection.run(QStringLiteral("PRAGMA journal_size_limit=%1").arg(pages * 4096));
    }
}

bool HistoryRetention::step(qint64 now, int rows, qint64 *before)
{
    if (!connection.isSqlite()) {
        return stepOnServer(now, before);
    }
    // In slices, so that not every commit looks at every series.
    if (keep > 0 && now - keep >= removed + std::min(keep / 64, HistoryLevels::width[2])) {
        pending = std::max(pending, now - keep);
    }
    qint64 used = 0;
    qint64 whole = 0;
    if (maxSize > 0) {
        qint64 first = 0;
        qint64 last = 0;
        if (!size(&used, &whole)) {
            return false;
        }
        if (used > maxSize - maxSize / 8) {
            if (!oldest(&first, &last)) {
                return false;
            }
            // The share of the time that is too much, and a little more; the newest always stay.
            const qint64 excess = used - (maxSize - maxSize / 8);
            const double share = 1.0 / 64 + double(excess) / double(used);
            pending = std::max(pending,
                               std::min(last, first + qint64(double(last - first) * share) + 1));
        }
    }
    if (pending > 0) {
        *before = pending;
        if (!removeBefore(pending, rows)) {
            return false;
        }
    }
    return maxSize == 0 || whole <= maxSize - maxSize / 16 || shrink();
}

bool HistoryRetention::removeBefore(qint64 time, int rows)
{
    if (!connection.begin()) {
        return false;
    }
    QVector<qint64> ids;
    {
        QSqlQuery series = connection.query();
        series.exec(QStringLiteral("SELECT id FROM series"));
        while (series.next()) {
            ids << series.value(0).toLongLong();
        }
    }
    bool done = removeTraces(time);
    for (const qint64 id : qAsConst(ids)) {
        done = done && (rows <= 0 || removeOf(id, time, &rows));
    }
    if (!done || !connection.commit()) {
        connection.rollBack();
        return false;
    }
    if (rows > 0) { // else the rest follows with the next piece
        removed = std::max(removed, time);
        pending = 0;
    }
    return true;
}

bool HistoryRetention::removeOf(qint64 series, qint64 time, int *rows)
{
    QVector<QVariant> row;
    const QString which
        = QStringLiteral("FROM samples WHERE series = %1 AND time < %2").arg(series);
    if (!connection.run(QStringLiteral("SELECT time ") + which.arg(time)
                            + QStringLiteral(" ORDER BY time LIMIT 1 OFFSET %1").arg(*rows),
                        {}, &row)) {
        return false;
    }
    const qint64 end = row.isEmpty() ? time : row.at(0).toLongLong();
    QSqlQuery removal = connection.query();
    removal.exec(QStringLiteral("DELETE ") + which.arg(end));
    *rows -= removal.numRowsAffected();
    return connection.note(removal);
}

// Of summaries that begin before the time some samples are missing now, or soon will be.
bool HistoryRetention::removeTraces(qint64 time)
{
    for (int level = 0; level < HistoryLevels::count; ++level) {
        const qint64 width = HistoryLevels::width[size_t(level)];
        if (!connection.run(QStringLiteral("DELETE FROM summaries WHERE level = %1 AND piece <= %2 "
                                           "AND series IN (SELECT id FROM series)")
                                .arg(level)
                                .arg(HistoryLevels::piece(time - 1, width)))) {
            return false;
        }
    }
    return connection.run(QStringLiteral("DELETE FROM events WHERE time < %1").arg(time));
}

// A free page is used again; the file shrinks only while it is too large.
bool HistoryRetention::shrink()
{
    QSqlQuery vacuum = connection.query();
    vacuum.exec(QStringLiteral("PRAGMA incremental_vacuum(2000)"));
    while (vacuum.next()) { // each step frees one page
    }
    return connection.note(vacuum);
}

bool HistoryRetention::size(qint64 *used, qint64 *whole)
{
    qint64 pages = 0;
    qint64 freePages = 0;
    qint64 pageSize = 0;
    if (!number(QStringLiteral("PRAGMA page_count"), &pages)
        || !number(QStringLiteral("PRAGMA freelist_count"), &freePages)
        || !number(QStringLiteral("PRAGMA page_size"), &pageSize)) {
        return false;
    }
    const qint64 log = HistoryFile::bytes(connection.place().file + QStringLiteral("-wal"));
    *whole = pages * pageSize + log;
    *used = (pages - freePages) * pageSize + std::min(log, maxSize / 2);
    return true;
}

bool HistoryRetention::oldest(qint64 *first, qint64 *last)
{
    QVector<QVariant> row;
    if (!connection.run(
            QStringLiteral(
                "SELECT min(first), max(last) FROM (SELECT (SELECT min(time) FROM samples "
                "WHERE series = id) AS first, (SELECT max(time) FROM samples WHERE "
                "series = id) AS last FROM series) AS times"),
            {}, &row)) {
        return false;
    }
    *first = row.value(0).toLongLong();
    *last = row.value(1).toLongLong();
    return true;
}

bool HistoryRetention::number(const QString &statement, qint64 *value)
{
    QVector<QVariant> row;
    const bool done = connection.run(statement, {}, &row);
    *value = row.value(0).toLongLong();
    return done;
}

// Whole days go, which costs a server nothing; the last one stays.
bool HistoryRetention::stepOnServer(qint64 now, qint64 *before)
{
    qint64 day = keep > 0 ? HistoryLevels::piece(now - keep, HistorySchema::dayLength) : 0;
    qint64 bytes = 0;
    qint64 first = 0;
    qint64 last = 0;
    if (maxSize > 0) {
        if (!number(
                QStringLiteral("SELECT coalesce(sum(pg_total_relation_size((schemaname || '.' || "
                               "tablename)::regclass)), 0)::bigint FROM pg_tables WHERE "
                               "schemaname = 'process_data_history'"),
                &bytes)) {
            return false;
        }
        if (bytes > maxSize && !oldest(&first, &last)) {
            return false;
        }
        if (bytes > maxSize) {
            const qint64 firstDay = HistoryLevels::piece(first, HistorySchema::dayLength);
            const qint64 lastDay = HistoryLevels::piece(last, HistorySchema::dayLength);
            day = std::max(day, std::min(firstDay + 1, lastDay));
        }
    }
    const qint64 time = day * HistorySchema::dayLength;
    if (day <= 0 || time <= removed) {
        return true;
    }
    if (!connection.begin()) {
        return false;
    }
    if (HistorySchema::dropDaysBefore(connection, day) && removeTraces(time)
        && connection.commit()) {
        removed = time;
        *before = time;
        return true;
    }
    connection.rollBack();
    return false;
}
