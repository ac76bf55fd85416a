// SPDX-License-Identifier: MIT
// The history against its floors in the same run: a bare loop through SQLite's C interface, and COPY.
#include "HistoryReader.h"
#include "HistoryWriter.h"
#include "PostgresCluster.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <cstdio>
#include <sqlite3.h>

namespace {

constexpr qint64 second = 1'000'000'000;
constexpr qint64 start = qint64(1'700'000'000) * second;
constexpr int selectors = 1000;
constexpr int batch = 20000; // samples of a transaction

double valueOf(qint64 i)
{
    return double(i % 977) * 1.25 + double(i % 13) / 7;
}

[[noreturn]] void fail(const QString &what)
{
    std::fprintf(stderr, "benchmark_history: %s\n", qPrintable(what));
    std::exit(1);
}

QString selector(int i)
{
    return QStringLiteral("processdata://Bench/C/%1/value").arg(i);
}

HistorySettings settings(const QString &database)
{
    HistorySettings settings;
    settings.database = database;
    settings.commitEvery = 3'600'000;
    settings.queueLimit = qint64(256) * 1024 * 1024;
    return settings;
}

// Samples of all selectors in turn, ten a second of each. Seconds from the first append to the last commit.
double write(const QString &database, qint64 samples)
{
    HistoryWriter writer(settings(database));
    if (!writer.open()) {
        fail(writer.errorText());
    }
    std::vector<int> series;
    for (int i = 0; i < selectors; ++i) {
        series.push_back(
            writer.addSeries({selector(i), HistoryType::Float64, QStringLiteral("bar"), {}, 0}));
    }
    QElapsedTimer timer;
    timer.start();
    for (qint64 i = 0; i < samples; ++i) {
        writer.append(series[size_t(i % selectors)],
                      {start + i / selectors * (second / 10), valueOf(i)});
        if (i % batch == batch - 1 && !writer.flush()) {
            fail(QStringLiteral("writing failed"));
        }
    }
    if (!writer.flush()) {
        fail(QStringLiteral("writing failed"));
    }
    return double(timer.nsecsElapsed()) / 1e9;
}

void run(sqlite3 *database, const char *statement)
{
    if (sqlite3_exec(database, statement, nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(QString::fromUtf8(sqlite3_errmsg(database)));
    }
}

// The same table, statement, settings and transactions without anything around them.
double writeBare(const QString &file, qint64 samples)
{
    sqlite3 *database = nullptr;
    sqlite3_open(file.toUtf8().constData(), &database);
    run(database,
        "PRAGMA auto_vacuum=INCREMENTAL; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; "
        "PRAGMA cache_size=-16384; PRAGMA journal_size_limit=4194304; "
        "CREATE TABLE samples (series BIGINT NOT NULL, time BIGINT NOT NULL, turn INT NOT NULL, "
        "value, error INT NOT NULL, late INT NOT NULL, PRIMARY KEY (series, time, turn)) "
        "WITHOUT ROWID");
    sqlite3_stmt *insert = nullptr;
    sqlite3_prepare_v2(database, "INSERT INTO samples VALUES (?,?,?,?,?,?)", -1, &insert, nullptr);
    QElapsedTimer timer;
    timer.start();
    for (qint64 i = 0; i < samples; ++i) {
        if (i % batch == 0) {
            run(database, "BEGIN IMMEDIATE");
        }
        sqlite3_bind_int64(insert, 1, i % selectors + 1);
        sqlite3_bind_int64(insert, 2, start + i / selectors * (second / 10));
        sqlite3_bind_int(insert, 3, 0);
        sqlite3_bind_double(insert, 4, valueOf(i));
        sqlite3_bind_int(insert, 5, 0);
        sqlite3_bind_int(insert, 6, 0);
        sqlite3_step(insert);
        sqlite3_reset(insert);
        if (i % batch == batch - 1 || i == samples - 1) {
            run(database, "COMMIT");
        }
    }
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    sqlite3_finalize(insert);
    sqlite3_close(database);
    return seconds;
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

void print(const char *what, double measured, double against, const char *unit, const char *goal)
{
    std::printf("%s: %.4g against %.4g %s, ratio %.2f, goal %s\n", what, measured, against, unit,
                measured / against, goal);
    std::fflush(stdout);
}

void compareWriting(const QTemporaryDir &folder, qint64 samples)
{
    QVector<double> rates;
    QVector<double> bare;
    double bytes = 0;
    double bareBytes = 0;
    for (int round = 0; round < 5; ++round) {
        const QString ours = folder.filePath(QStringLiteral("ours%1").arg(round));
        const QString theirs = folder.filePath(QStringLiteral("bare%1").arg(round));
        bare << double(samples) / writeBare(theirs, samples);
        rates << double(samples) / write(ours, samples);
        bytes = double(QFileInfo(ours).size()) / double(samples);
        bareBytes = double(QFileInfo(theirs).size()) / double(samples);
        QFile::remove(ours);
        QFile::remove(theirs);
    }
    print("samples a second into SQLite", median(rates), median(bare), "1/s", ">= 0.6");
    print("bytes a sample", bytes, bareBytes, "bytes", "<= 1.2");
}

// One selector, ten samples a second, so that long ranges have many.
void writeOne(const QString &database, qint64 samples, qint64 spacing)
{
    HistoryWriter writer(settings(database));
    if (!writer.open()) {
        fail(writer.errorText());
    }
    const int series = writer.addSeries({selector(0), HistoryType::Float64, {}, {}, 0});
    for (qint64 i = 0; i < samples; ++i) {
        writer.append(series, {start + i * spacing, valueOf(i)});
        if (i % 200000 == 199999) {
            writer.flush();
        }
    }
}

double timePoints(const QString &database, qint64 samples, qint64 spacing)
{
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVector<double> times;
    if (!reader.open(database)) {
        fail(reader.errorText());
    }
    for (int round = 0; round < 11; ++round) {
        QElapsedTimer timer;
        timer.start();
        if (!reader.points(selector(0), start, start + samples * spacing, 1000, &found)) {
            fail(reader.errorText());
        }
        times << double(timer.nsecsElapsed()) / 1e6;
    }
    qint64 count = 0;
    for (const HistoryPiece &piece : qAsConst(found)) {
        count += piece.count;
    }
    std::printf("%d pieces of %lld samples\n", found.size(), static_cast<long long>(count));
    return median(times);
}

void comparePoints(const QTemporaryDir &folder, qint64 many)
{
    const QString day = folder.filePath(QStringLiteral("day"));
    const QString year = folder.filePath(QStringLiteral("year"));
    writeOne(day, 86400, second);
    writeOne(year, many, second);
    print("1000 points out of many samples, against out of 86400", timePoints(year, many, second),
          timePoints(day, 86400, second), "ms", "<= 2 and both <= 50 ms");
}

void compareServer(qint64 samples)
{
    PostgresCluster cluster;
    const QString problem = cluster.create();
    if (!problem.isEmpty()) {
        fail(problem);
    }
    const QString database = cluster.database();
    write(database, selectors); // the tables, and what a first round costs
    QVector<double> rates;
    QVector<double> copies;
    for (int round = 0; round < 3; ++round) {
        cluster.sql(QStringLiteral(
            "TRUNCATE process_data_history.samples, process_data_history.summaries"));
        rates << double(samples) / write(database, samples);
        cluster.sql(
            QStringLiteral(
                "COPY (SELECT * FROM process_data_history.samples ORDER BY time, series) TO "
                "'%1'")
                .arg(cluster.file(QStringLiteral("rows"))));
        cluster.sql(QStringLiteral("TRUNCATE process_data_history.samples"));
        QElapsedTimer timer;
        timer.start();
        const QString copied
            = cluster.sql(QStringLiteral("COPY process_data_history.samples FROM '%1'")
                              .arg(cluster.file(QStringLiteral("rows"))));
        copies << double(samples) / (double(timer.nsecsElapsed()) / 1e9);
        if (copied.startsWith(QLatin1Char('['))) {
            fail(copied);
        }
    }
    print("samples a second into PostgreSQL, against COPY", median(rates), median(copies), "1/s",
          ">= 0.5");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const qint64 many = argc > 1 ? QString::fromLocal8Bit(argv[1]).toLongLong() : 31'000'000;
    const QTemporaryDir folder;
    const QByteArray kind = argc > 2 ? argv[2] : "";
    if (kind.isEmpty() || kind == "writing") {
        compareWriting(folder, 1'000'000);
    }
    if (kind.isEmpty() || kind == "server") {
        compareServer(500'000);
    }
    if (kind.isEmpty() || kind == "points") {
        comparePoints(folder, many);
    }
    return 0;
}
