// SPDX-License-Identifier: MIT
// Writes batches of samples and events into an open database, each in one transaction.
#include "HistoryStore.h"

#include "HistoryColumns.h"
#include "HistoryValueCodec.h"

#include <QSqlError>

#include <algorithm>
#include <numeric>

namespace {

bool equal(const QVariant &left, const QVariant &right)
{
    return left.userType() == right.userType() && left == right;
}

// Columns of text are never null.
QString text(const QString &from)
{
    return from.isNull() ? QString::fromUtf8(QByteArray("")) : from;
}
} // namespace

HistoryStore::HistoryStore(HistoryConnection &connection)
    : connection(connection)
    , rows(connection)
    , summaryStatement(connection.query())
{
}

bool HistoryStore::write(const std::vector<QueuedSample> &samples,
                         const std::vector<HistoryEvent> &events,
                         const std::vector<HistorySeries> &names, qint64 now)
{
    if (!connection.begin()) {
        return false;
    }
    if (writeAll(samples, events, names, now) && connection.commit()) {
        return true;
    }
    connection.rollBack();
    rows.clear();
    states.clear(); // they ran ahead of the database: it is asked anew
    return false;
}

bool HistoryStore::writeAll(const std::vector<QueuedSample> &samples,
                            const std::vector<HistoryEvent> &events,
                            const std::vector<HistorySeries> &names, qint64 now)
{
    states.resize(names.size());
    // Neighbours in the table one after the other, each series in the order it came in.
    std::vector<size_t> order(samples.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&samples](size_t left, size_t right) {
        return samples[left].series < samples[right].series;
    });
    Step step;
    for (const size_t i : order) {
        const QueuedSample &sample = samples[i];
        State &state = states[size_t(sample.series)];
        const bool wasBehind = state.behind;
        if (!(state.known || find(state, names[size_t(sample.series)], sample.time))) {
            return false;
        }
        const qint64 newest = state.newest;
        if (!writeSample(state, sample)) {
            return false;
        }
        if (state.behind && !wasBehind) {
            if (step.number++ == 0) {
                step.series = sample.series;
                step.from = newest;
                step.until = sample.time;
            }
        }
    }
    return rows.flush() && writeStep(step, names, now)
        && std::all_of(events.begin(), events.end(),
                       [this](const HistoryEvent &event) { return writeEvent(event); });
}

bool HistoryStore::writeSample(State &state, const QueuedSample &sample)
{
    HistoryRow row{
        state.id,         sample.time, 0, HistoryValueCodec::encode(state.type, sample.value),
        sample.errorType, false};
    bool there = false;
    if (state.hasNewest && sample.time <= state.newest && !place(state, row, &there)) {
        return false;
    }
    if (there) {
        return true;
    }
    row.late = state.hasNewest && sample.time < state.newest;
    state.behind = row.late;
    if (!row.late) {
        state.hasNewest = true;
        state.newest = sample.time;
        state.newestValue = row.value;
        state.newestError = row.error;
    }
    return rows.add(std::move(row)) && summarise(state, sample);
}

// For a time that may be in the table already.
bool HistoryStore::place(const State &state, HistoryRow &row, bool *there)
{
    if (row.time == state.newest && row.error == state.newestError
        && equal(row.value, state.newestValue)) {
        *there = true;
        return true;
    }
    const bool sqlite = connection.isSqlite();
    if (!rows.flush()) {
        return false;
    }
    QSqlQuery query = connection.query();
    query.exec(QStringLiteral("SELECT turn, error, %1 FROM samples WHERE series = %2 AND time = %3 "
                              "ORDER BY turn")
                   .arg(HistoryColumns::value(sqlite))
                   .arg(row.series)
                   .arg(row.time));
    if (!connection.note(query)) {
        return false;
    }
    while (query.next()) {
        row.turn = query.value(0).toInt() + 1;
        if (query.value(1).toInt() == row.error
            && equal(HistoryColumns::read(query, 2, sqlite), row.value)) {
            *there = true;
        }
    }
    return true;
}

bool HistoryStore::find(State &state, const HistorySeries &series, qint64 since)
{
    state = State();
    state.type = series.type;
    const QString type = HistoryValueCodec::typeName(series.type);
    QVector<QVariant> row;
    if (!connection.run(QStringLiteral("SELECT id, type, unit, description FROM series "
                                       "WHERE selector = ? ORDER BY since DESC, id DESC LIMIT 1"),
                        {series.selector}, &row)) {
        return false;
    }
    if (row.value(1).toString() != type || row.value(2).toString() != series.unit
        || row.value(3).toString() != series.description || row.isEmpty()) {
        if (!connection.run(
                QStringLiteral("INSERT INTO series (selector, type, unit, description, since) "
                               "VALUES (?, ?, ?, ?, ?) RETURNING id"),
                {text(series.selector), type, text(series.unit), text(series.description), since},
                &row)) {
            return false;
        }
    }
    state.id = row.value(0).toLongLong();
    state.known = findNewest(state);
    return state.known;
}

bool HistoryStore::findNewest(State &state)
{
    const bool sqlite = connection.isSqlite();
    QSqlQuery query = connection.query();
    query.exec(QStringLiteral("SELECT time, error, %1 FROM samples WHERE series = %2 "
                              "ORDER BY time DESC, turn DESC LIMIT 1")
                   .arg(HistoryColumns::value(sqlite))
                   .arg(state.id));
    if (!connection.note(query)) {
        return false;
    }
    if (query.next()) {
        state.hasNewest = true;
        state.newest = query.value(0).toLongLong();
        state.newestError = query.value(1).toInt();
        state.newestValue = HistoryColumns::read(query, 2, sqlite);
    }
    for (int level = 0; level < HistoryLevels::count; ++level) {
        Open &open = state.open[size_t(level)];
        open.piece = HistoryLevels::piece(state.newest, HistoryLevels::width[size_t(level)]);
        open.whole = false;
    }
    return true;
}

bool HistoryStore::summarise(State &state, const QueuedSample &sample)
{
    qint64 rank = 0;
    HistorySummary one;
    one.count = 1;
    if (sample.errorType == ProcessDataDefinitions::NoError
        && HistoryValueCodec::rank(state.type, sample.value, &rank)) {
        one.addNumber(rank, HistoryValueCodec::number(state.type, rank), sample.time);
    }
    for (int level = 0; level < HistoryLevels::count; ++level) {
        Open &open = state.open[size_t(level)];
        const qint64 piece = HistoryLevels::piece(sample.time, HistoryLevels::width[size_t(level)]);
        if (piece < open.piece) {
            // A summary that has become wrong goes: readers then look at the samples.
            if (!connection.run(QStringLiteral("DELETE FROM summaries WHERE series = %1 AND "
                                               "level = %2 AND piece = %3")
                                    .arg(state.id)
                                    .arg(level)
                                    .arg(piece))) {
                return false;
            }
            continue;
        }
        if (piece > open.piece) {
            if (!close(state, level)) {
                return false;
            }
            open = Open{{}, piece, true};
        }
        open.sum.add(one);
    }
    return true;
}

bool HistoryStore::close(State &state, int level)
{
    const Open &open = state.open[size_t(level)];
    if (!open.whole || open.sum.count < HistoryLevels::fewest) {
        return true;
    }
    if (!summaryPrepared) {
        summaryPrepared = summaryStatement.prepare(QStringLiteral(
            "INSERT INTO summaries (series, level, piece, count, numbers, sum, least, least_time, "
            "greatest, greatest_time) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    }
    int place = 0;
    const HistorySummary &sum = open.sum;
    for (const qint64 number : {state.id, qint64(level), open.piece, sum.count, sum.numbers}) {
        summaryStatement.bindValue(place++, number);
    }
    summaryStatement.bindValue(place++, sum.sum);
    for (const qint64 number : {sum.least, sum.leastTime, sum.greatest, sum.greatestTime}) {
        summaryStatement.bindValue(place++, number);
    }
    summaryStatement.exec();
    return connection.note(summaryStatement);
}

void HistoryStore::forgetSummariesBefore(qint64 time)
{
    for (State &state : states) {
        for (int level = 0; level < HistoryLevels::count; ++level) {
            Open &open = state.open[size_t(level)];
            open.whole = open.whole && open.piece * HistoryLevels::width[size_t(level)] >= time;
        }
    }
}

bool HistoryStore::writeStep(const Step &step, const std::vector<HistorySeries> &names, qint64 now)
{
    if (step.number == 0) {
        return true;
    }
    HistoryEvent event;
    event.time = now;
    event.kind = HistoryEvent::Kind::ClockSetBack;
    event.subject = names[size_t(step.series)].selector;
    event.from = step.from;
    event.until = step.until;
    event.number = step.number;
    event.text = QStringLiteral("times went back by %1 ns").arg(step.from - step.until);
    return writeEvent(event);
}

bool HistoryStore::writeEvent(const HistoryEvent &event)
{
    return connection.run(
        QStringLiteral("INSERT INTO events (time, kind, subject, since, until, number, text) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING"),
        {event.time, HistoryEvents::kindName(event.kind), text(event.subject), event.from,
         event.until, event.number, text(event.text)});
}

bool HistoryStore::newestTime(qint64 *time)
{
    // One step into the key for each series; the newest of all would read the whole table.
    QVector<QVariant> row;
    if (!connection.run(
            QStringLiteral("SELECT max(newest) FROM (SELECT (SELECT max(time) FROM samples WHERE "
                           "series = id) AS newest FROM series UNION ALL SELECT max(time) FROM "
                           "events) AS times"),
            {}, &row)) {
        return false;
    }
    *time = row.value(0).toLongLong();
    return true;
}
