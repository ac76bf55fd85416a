// SPDX-License-Identifier: MIT
// Looks back into a history: its connection, its series and its events.
#include "HistoryReaderPrivate.h"

#include "HistoryGaps.h"
#include "HistorySchema.h"
#include "HistoryValueCodec.h"

#include <QFileInfo>

#include <algorithm>

bool HistoryReader::Private::connectDatabase()
{
    connection = HistoryConnection::open(place, HistoryConnection::Purpose::Reading, &error);
    if (!connection) {
        return false;
    }
    const QString problem = HistorySchema::check(*connection, &version);
    if (!problem.isEmpty()) {
        error = place.shown() + QLatin1Char(' ') + problem;
        connection.reset();
        return false;
    }
    file = place.isFile() ? HistoryFile::identity(place.file) : HistoryFile::Identity();
    return true;
}

// Another file may be there now, or a writer beside what was taken for a file that nobody writes.
bool HistoryReader::Private::isCurrent() const
{
    return connection
        && (!place.isFile()
            || (HistoryFile::identity(place.file) == file
                && !(connection->isFrozen()
                     && QFileInfo::exists(place.file + QStringLiteral("-wal")))));
}

bool HistoryReader::Private::read(const std::function<bool()> &query)
{
    if (!isNamed) {
        error = QStringLiteral("no database is open; call open() first");
        return false;
    }
    if (!isCurrent() && !connectDatabase()) {
        return false;
    }
    const QString begin = connection->isSqlite()
        ? QStringLiteral("BEGIN")
        : QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ");
    if (connection->run(begin) && query() && connection->commit()) {
        return true;
    }
    error = place.shown() + QLatin1Char(' ') + connection->lastError();
    connection.reset(); // the next query begins anew, after a server's restart for instance
    return false;
}

bool HistoryReader::Private::check(bool good, const QString &problem)
{
    if (!good) {
        error = problem;
    }
    return good;
}

bool HistoryReader::Private::find(const QString &selector, QVector<StoredSeries> *found)
{
    QSqlQuery query = connection->query();
    const QString every
        = QStringLiteral("SELECT id, selector, type, unit, description, since FROM series ");
    if (selector.isNull()) {
        query.exec(every + QStringLiteral("ORDER BY selector, since, id"));
    } else {
        query.prepare(every + QStringLiteral("WHERE selector = ? ORDER BY since, id"));
        query.addBindValue(selector);
        query.exec();
    }
    while (query.next()) {
        StoredSeries stored;
        stored.id = query.value(0).toLongLong();
        stored.series.selector = query.value(1).toString();
        stored.series.unit = query.value(3).toString();
        stored.series.description = query.value(4).toString();
        stored.series.since = query.value(5).toLongLong();
        if (HistoryValueCodec::typeOf(query.value(2).toString(), &stored.series.type)) {
            found->append(stored);
        }
    }
    return connection->note(query);
}

HistoryReader::HistoryReader()
    : d(std::make_unique<Private>())
{
}

HistoryReader::~HistoryReader() = default;

bool HistoryReader::open(const QString &database)
{
    d->connection.reset();
    d->error = HistoryPlace::parse(database, &d->place);
    d->isNamed = d->error.isEmpty() && d->connectDatabase();
    return d->isNamed;
}

QString HistoryReader::errorText() const
{
    return d->error;
}

bool HistoryReader::selectors(QStringList *found)
{
    found->clear();
    return d->read([&] {
        QVector<StoredSeries> all;
        const bool done = d->find({}, &all);
        for (const StoredSeries &stored : qAsConst(all)) {
            if (found->isEmpty() || found->constLast() != stored.series.selector) {
                found->append(stored.series.selector);
            }
        }
        return done;
    });
}

bool HistoryReader::series(const QString &selector, QVector<HistorySeries> *found)
{
    found->clear();
    return d->read([&] {
        QVector<StoredSeries> all;
        const bool done = d->find(selector, &all);
        for (const StoredSeries &stored : qAsConst(all)) {
            found->append(stored.series);
        }
        return done;
    });
}

bool HistoryReader::events(qint64 from, qint64 until, QVector<HistoryEvent> *found)
{
    found->clear();
    return d->read([&] {
        QVector<HistoryEvent> all;
        const bool done = HistoryGaps::read(*d->connection, until, &all);
        std::copy_if(
            all.cbegin(), all.cend(), std::back_inserter(*found),
            [&](const HistoryEvent &event) { return HistoryGaps::touches(event, from, until); });
        return done;
    });
}

bool HistoryReader::gaps(const QString &selector, qint64 from, qint64 until,
                         QVector<HistoryGap> *found)
{
    found->clear();
    return d->read([&] {
        QVector<HistoryEvent> all;
        const bool done = HistoryGaps::read(*d->connection, until, &all);
        *found = HistoryGaps::of(all, selector, from, until);
        return done;
    });
}

bool HistoryReader::info(HistoryInfo *found)
{
    *found = HistoryInfo();
    return d->read([&] {
        QVector<StoredSeries> all;
        QVector<QVariant> row;
        const bool sqlite = d->connection->isSqlite();
        found->version = d->version;
        if (!d->find({}, &all)
            || !d->connection->run(
                QStringLiteral("SELECT coalesce(sum(number), 0) FROM events WHERE "
                               "kind = 'samples dropped'"),
                {}, &row)) {
            return false;
        }
        found->dropped = row.value(0).toLongLong();
        for (const StoredSeries &stored : qAsConst(all)) {
            if (!d->connection->run(
                    QStringLiteral("SELECT count(*), min(time), max(time) FROM samples "
                                   "WHERE series = %1")
                        .arg(stored.id),
                    {}, &row)) {
                return false;
            }
            found->series.append({stored.series, row.value(0).toLongLong(),
                                  row.value(1).toLongLong(), row.value(2).toLongLong()});
        }
        if (sqlite) {
            found->bytes = HistoryFile::bytes(d->place.file);
            return true;
        }
        const bool done = d->connection->run(
            QStringLiteral(
                "SELECT coalesce(sum(pg_total_relation_size((schemaname || '.' || tablename)"
                "::regclass)), 0)::bigint FROM pg_tables WHERE schemaname = "
                "'process_data_history'"),
            {}, &row);
        found->bytes = row.value(0).toLongLong();
        return done;
    });
}
