// SPDX-License-Identifier: MIT
// Samples of a history, summed up in pieces.
#include "HistoryReaderPrivate.h"

#include <algorithm>

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
