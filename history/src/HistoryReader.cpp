// SPDX-License-Identifier: MIT
// Looks back into a history.
#include "HistoryReader.h"

#include "HistoryColumns.h"
#include "HistoryGaps.h"
#include "HistoryPieces.h"
#include "HistorySchema.h"
#include "HistoryValueCodec.h"

#include <QFileInfo>
#include <QSqlError>

#include <algorithm>

namespace {

struct StoredSeries
{
    qint64 id = 0;
    HistorySeries series;
};

} // namespace

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

bool HistoryReader::Private::narrow(const QVector<StoredSeries> &all, qint64 *from, qint64 *until)
{
    qint64 first = *until;
    qint64 last = *from;
    for (const StoredSeries &stored : all) {
        QVector<QVariant> row;
        if (!connection->run(
                QStringLiteral("SELECT (SELECT min(time) FROM samples WHERE series = %1 AND "
                               "time >= %2 AND time < %3), (SELECT max(time) FROM samples "
                               "WHERE series = %1 AND time >= %2 AND time < %3)")
                    .arg(stored.id)
                    .arg(*from)
                    .arg(*until),
                {}, &row)) {
            return false;
        }
        if (!row.at(0).isNull()) {
            first = std::min(first, row.at(0).toLongLong());
            last = std::max(last, row.at(1).toLongLong() + 1);
        }
    }
    *from = first;
    *until = last;
    return true;
}

bool HistoryReader::Private::pieces(const QVector<StoredSeries> &all, const HistoryGrid &grid,
                                    QVector<HistoryPiece> *found)
{
    HistoryPieces pieces(*connection, grid);
    for (const StoredSeries &stored : all) {
        if (!pieces.add(stored.id, stored.series.type)) {
            return false;
        }
    }
    *found = pieces.pieces();
    return true;
}

// Series of one selector follow each other, unless a clock was set back: so they are merged.
bool HistoryReader::Private::samples(const QVector<StoredSeries> &all, qint64 from, qint64 until,
                                     const std::function<bool(const HistorySample &)> &take)
{
    const bool sqlite = connection->isSqlite();
    std::vector<QSqlQuery> queries;
    std::vector<std::unique_ptr<HistorySample>> heads(size_t(all.size()));
    const auto advance = [&](size_t i) {
        heads[i] = queries[i].next() ? std::make_unique<HistorySample>(
                       HistorySamples::read(queries[i], all.at(int(i)).series.type, sqlite))
                                     : nullptr;
    };
    for (int i = 0; i < all.size(); ++i) {
        queries.push_back(all.size() == 1 ? connection->stream() : connection->query());
        queries.back().exec(
            QStringLiteral("SELECT %1 FROM samples WHERE series = %2 AND time >= %3 AND "
                           "time < %4 ORDER BY time, turn")
                .arg(HistorySamples::columns(sqlite))
                .arg(all.at(i).id)
                .arg(from)
                .arg(until));
        if (!connection->note(queries.back())) {
            return false;
        }
        advance(size_t(i));
    }
    for (;;) {
        size_t next = heads.size();
        for (size_t i = 0; i < heads.size(); ++i) {
            if (heads[i] && (next == heads.size() || heads[i]->time < heads[next]->time)) {
                next = i;
            }
        }
        if (next == heads.size() || !take(*heads[next])) {
            return std::all_of(queries.begin(), queries.end(),
                               [this](const QSqlQuery &query) { return connection->note(query); });
        }
        advance(next);
    }
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

bool HistoryReader::samples(const QString &selector, qint64 from, qint64 until,
                            const std::function<bool(const HistorySample &)> &take)
{
    return d->read([&] {
        QVector<StoredSeries> all;
        return d->find(selector, &all) && d->samples(all, from, until, take);
    });
}

bool HistoryReader::sampleBefore(const QString &selector, qint64 time, HistorySample *found)
{
    return d->read([&] {
        QVector<StoredSeries> all;
        if (!d->find(selector, &all)) {
            return false;
        }
        const bool sqlite = d->connection->isSqlite();
        bool any = false;
        for (const StoredSeries &stored : qAsConst(all)) {
            QSqlQuery query = d->connection->query();
            query.exec(QStringLiteral("SELECT %1 FROM samples WHERE series = %2 AND time < %3 "
                                      "ORDER BY time DESC, turn DESC LIMIT 1")
                           .arg(HistorySamples::columns(sqlite))
                           .arg(stored.id)
                           .arg(time));
            if (query.next()) {
                const HistorySample sample
                    = HistorySamples::read(query, stored.series.type, sqlite);
                if (!any || sample.time >= found->time) {
                    *found = sample;
                    any = true;
                }
            }
            if (!d->connection->note(query)) {
                return false;
            }
        }
        return true;
    });
}

bool HistoryReader::points(const QString &selector, qint64 from, qint64 until, int points,
                           QVector<HistoryPiece> *found)
{
    found->clear();
    if (!d->check(points >= 1 && points <= 100'000 && from < until,
                  QStringLiteral("expected 1 to 100000 points of a range that begins before it "
                                 "ends"))) {
        return false;
    }
    return d->read([&] {
        QVector<StoredSeries> all;
        qint64 first = from;
        qint64 end = until;
        if (!d->find(selector, &all) || !d->narrow(all, &first, &end)) {
            return false;
        }
        return first >= end || d->pieces(all, HistoryGrid::ofPoints(first, end, points), found);
    });
}

bool HistoryReader::aggregates(const QString &selector, qint64 from, qint64 until, qint64 interval,
                               QVector<HistoryPiece> *found)
{
    found->clear();
    if (!d->check(
            interval >= 1 && from < until
                && (quint64(until) - quint64(from) - 1) / quint64(interval) < 1'000'000,
            QStringLiteral("expected an interval of at least 1 ns and at most 1000000 of them "
                           "in a range that begins before it ends"))) {
        return false;
    }
    return d->read([&] {
        QVector<StoredSeries> all;
        return d->find(selector, &all)
            && d->pieces(all, HistoryGrid{from, until, from, interval}, found);
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
