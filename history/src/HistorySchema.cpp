// SPDX-License-Identifier: MIT
// The tables, their version, and how older ones are brought forward.
#include "HistorySchema.h"

#include "HistorySummary.h"

#include <QSqlError>
#include <QStringList>

namespace {

// Columns that differ: SQLite keeps the type of each value, a server has one column a type.
QStringList tables(bool sqlite)
{
    const QString value = sqlite
        ? QStringLiteral("value")
        : QStringLiteral("whole BIGINT, real DOUBLE PRECISION, bytes BYTEA");
    const QString samplesEnd
        = sqlite ? QStringLiteral("WITHOUT ROWID") : QStringLiteral("PARTITION BY RANGE (time)");
    const QString end = sqlite ? QStringLiteral("WITHOUT ROWID") : QString();
    QStringList statements{
        QStringLiteral("CREATE TABLE about (name TEXT PRIMARY KEY, value TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE series (id %1, selector TEXT NOT NULL, type TEXT NOT NULL, "
                       "unit TEXT NOT NULL, description TEXT NOT NULL, since BIGINT NOT NULL)")
            .arg(sqlite ? QStringLiteral("INTEGER PRIMARY KEY")
                        : QStringLiteral("BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY")),
        QStringLiteral("CREATE INDEX series_of_selector ON series (selector, since)"),
        QStringLiteral("CREATE TABLE samples (series BIGINT NOT NULL, time BIGINT NOT NULL, "
                       "turn INT NOT NULL, %1, error INT NOT NULL, late INT NOT NULL, "
                       "PRIMARY KEY (series, time, turn)) %2")
            .arg(value, samplesEnd),
        QStringLiteral("CREATE TABLE summaries (series BIGINT NOT NULL, level INT NOT NULL, "
                       "piece BIGINT NOT NULL, count BIGINT NOT NULL, numbers BIGINT NOT NULL, "
                       "sum DOUBLE PRECISION NOT NULL, least BIGINT NOT NULL, "
                       "least_time BIGINT NOT NULL, greatest BIGINT NOT NULL, "
                       "greatest_time BIGINT NOT NULL, PRIMARY KEY (series, level, piece)) %1")
            .arg(end),
        QStringLiteral("CREATE TABLE events (time BIGINT NOT NULL, kind TEXT NOT NULL, "
                       "subject TEXT NOT NULL, since BIGINT NOT NULL, until BIGINT NOT NULL, "
                       "number BIGINT NOT NULL, text TEXT NOT NULL, "
                       "PRIMARY KEY (time, kind, subject)) %1")
            .arg(end),
    };
    if (!sqlite) {
        statements.prepend(QStringLiteral("CREATE SCHEMA IF NOT EXISTS process_data_history"));
        statements << QStringLiteral("CREATE TABLE samples_other PARTITION OF samples DEFAULT");
    }
    statements
        << QStringLiteral("INSERT INTO about VALUES ('format', 'process-data-history')")
        << QStringLiteral("INSERT INTO about VALUES ('version', '%1')").arg(HistorySchema::version);
    return statements;
}

bool countTables(HistoryConnection &connection, const QString &name, qint64 *count)
{
    const QString catalog = connection.isSqlite()
        ? QStringLiteral("sqlite_master WHERE name NOT LIKE 'sqlite_%'")
        : QStringLiteral("(SELECT tablename AS name FROM pg_tables "
                         "WHERE schemaname = 'process_data_history') AS tables WHERE name <> ''");
    QVector<QVariant> row;
    const QString named = name.isEmpty() ? QString() : QStringLiteral(" AND name = '%1'").arg(name);
    if (!connection.run(QStringLiteral("SELECT count(*) FROM ") + catalog + named, {}, &row)) {
        return false;
    }
    *count = row.value(0).toLongLong();
    return true;
}

QString foreign()
{
    return QStringLiteral("is a database of something else, not a history; name another");
}

// 0: an empty database.
QString readVersion(HistoryConnection &connection, int *version)
{
    qint64 all = 0;
    qint64 about = 0;
    if (!countTables(connection, {}, &all)
        || !countTables(connection, QStringLiteral("about"), &about)) {
        return connection.lastError();
    }
    *version = 0;
    if (about == 0) {
        return all == 0 ? QString() : foreign();
    }
    QVector<QVariant> row;
    if (!connection.run(QStringLiteral("SELECT a.value, b.value FROM about a, about b "
                                       "WHERE a.name = 'format' AND b.name = 'version'"),
                        {}, &row)) {
        return foreign();
    }
    *version = row.value(1).toString().toInt();
    return row.value(0).toString() == QLatin1String("process-data-history") && *version > 0
        ? QString()
        : foreign();
}

QString newer(int found, int known)
{
    return QStringLiteral("was written by a newer version of this software: its format is %1, and "
                          "this version knows up to %2; update this software")
        .arg(found)
        .arg(known);
}

bool make(HistoryConnection &connection)
{
    const QStringList statements = tables(connection.isSqlite());
    for (const QString &statement : statements) {
        if (!connection.run(statement)) {
            return false;
        }
    }
    return true;
}

bool bringForward(HistoryConnection &connection, int from,
                  const std::vector<HistorySchema::Step> &steps)
{
    for (size_t i = size_t(from) - 1; i < steps.size(); ++i) {
        if (!steps[i](connection)) {
            return false;
        }
    }
    return connection.run(QStringLiteral("UPDATE about SET value = '%1' WHERE name = 'version'")
                              .arg(int(steps.size()) + 1));
}

QString dayName(qint64 day)
{
    return QStringLiteral("samples_day_%1").arg(day);
}

} // namespace

QString HistorySchema::prepare(HistoryConnection &connection, const std::vector<Step> &steps)
{
    const int target = steps.empty() ? version : int(steps.size()) + 1;
    int found = 0;
    QString problem = readVersion(connection, &found);
    if (!problem.isEmpty() || found == target) {
        return problem;
    }
    if (found > target) {
        return newer(found, target);
    }
    if (!connection.begin()) {
        return connection.lastError();
    }
    const bool done = found == 0 ? make(connection) : bringForward(connection, found, steps);
    if (done && connection.commit()) {
        return {};
    }
    connection.rollBack();
    return QStringLiteral("could not be %1, and is as it was: it %2")
        .arg(found == 0 ? QStringLiteral("prepared")
                        : QStringLiteral("brought from format %1 to %2").arg(found).arg(target),
             connection.lastError());
}

QString HistorySchema::check(HistoryConnection &connection, int *found)
{
    QString problem = readVersion(connection, found);
    if (!problem.isEmpty() || *found == version) {
        return problem;
    }
    if (*found == 0) {
        return QStringLiteral("is an empty database; record something first");
    }
    return *found > version
        ? newer(*found, version)
        : QStringLiteral("has the older format %1, and this version reads %2; open it once for "
                         "recording, which brings it forward")
              .arg(*found)
              .arg(version);
}

bool HistorySchema::hasPartition(qint64 day)
{
    return day >= 10957 && day < 47482; // 2000 to 2100
}

bool HistorySchema::makeDay(HistoryConnection &connection, qint64 day)
{
    return connection.run(QStringLiteral("CREATE TABLE IF NOT EXISTS %1 PARTITION OF samples "
                                         "FOR VALUES FROM (%2) TO (%3)")
                              .arg(dayName(day))
                              .arg(day * dayLength)
                              .arg((day + 1) * dayLength));
}

bool HistorySchema::dropDaysBefore(HistoryConnection &connection, qint64 day)
{
    QSqlQuery names = connection.query();
    names.exec(QStringLiteral("SELECT tablename FROM pg_tables WHERE schemaname = "
                              "'process_data_history' AND tablename LIKE 'samples\\_day\\_%'"));
    if (!connection.note(names)) {
        return false;
    }
    QStringList old;
    while (names.next()) {
        const QString name = names.value(0).toString();
        if (name.section(QLatin1Char('_'), 2).toLongLong() < day) {
            old << name;
        }
    }
    names.finish();
    for (const QString &name : qAsConst(old)) {
        if (!connection.run(QStringLiteral("DROP TABLE ") + name)) {
            return false;
        }
    }
    return true;
}
