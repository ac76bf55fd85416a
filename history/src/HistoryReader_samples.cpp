// SPDX-License-Identifier: MIT
// Samples of a history, one by one.
#include "HistoryReaderPrivate.h"

#include <algorithm>

// Series of one selector follow each other, unless a clock was set back: so they are merged.
bool HistoryReader::Private::samples(const QVector<StoredSeries> &all, qint64 from, qint64 until,
                                     const std::function<bool(const HistorySample &)> &take)
{
    const bool sqlite = connection->isSqlite();
    std::vector<QSqlQuery> queries;
    std::vector<std::unique_ptr<HistorySample>> heads(size_t(all.size()));
    const auto advance = [&](size_t i) {
        heads[i] = queries[i].next() ? std::make_unique<HistorySample>(
                       StoredSample::read(queries[i], sqlite).decoded(all.at(int(i)).series.type))
                                     : nullptr;
    };
    for (int i = 0; i < all.size(); ++i) {
        queries.push_back(all.size() == 1 ? connection->stream() : connection->query());
        queries.back().exec(
            QStringLiteral("SELECT %1 FROM samples WHERE series = %2 AND time >= %3 AND "
                           "time < %4 ORDER BY time, turn")
                .arg(StoredSample::columns(sqlite))
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
                           .arg(StoredSample::columns(sqlite))
                           .arg(stored.id)
                           .arg(time));
            if (query.next()) {
                const HistorySample sample
                    = StoredSample::read(query, sqlite).decoded(stored.series.type);
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
