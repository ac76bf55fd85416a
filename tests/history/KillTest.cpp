// SPDX-License-Identifier: MIT
// A writer is killed again and again: the file is whole, and what was stored is there, once.
#include "ChildProcess.h"
#include "HistorySupport.h"
#include "PostgresCluster.h"
#include "Rounds.h"

#include <QRandomGenerator>

using namespace HistorySupport;

class KillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        database = folder->filePath("h.db");
    }

    void aKilledWriterLeavesAWholeFileWithAllThatWasStored();
    void manyReadersSeeAWholeHistoryBesideTheWriter();
    void aRestartedServerHasAllThatWasStored();

private:
    QString selector(int i) { return QString("processdata://Pump/C/%1/n").arg(i); }
    qint64 check(const QString &where, qint64 promised);
    qint64 promise(ChildProcess &writer, int lines);

    std::unique_ptr<QTemporaryDir> folder;
    QString database;
};

// The number that the writer goes on from; -1 after a failure.
qint64 KillTest::check(const QString &where, qint64 promised)
{
    qint64 next = std::numeric_limits<qint64>::max();
    for (int i = 0; i < 10; ++i) {
        const QVector<HistorySample> found = stored(where, selector(i));
        for (int number = 0; number < found.size(); ++number) {
            if (found.at(number).time != number
                || found.at(number).value != QVariant(qint64(number))) {
                qWarning() << selector(i) << "has" << found.at(number).time << "in place" << number
                           << found.at(number).value << found.at(number).errorType
                           << found.at(number).late;
                return -1;
            }
        }
        if (found.size() <= promised) {
            qWarning() << selector(i) << "ends with" << found.size() << "where" << promised
                       << "was stored";
            return -1;
        }
        next = std::min(next, qint64(found.size()));
    }
    return next;
}

// The last number that was stored for certain, of as many lines and those that came with them.
qint64 KillTest::promise(ChildProcess &writer, int lines)
{
    QByteArray last;
    for (int i = 0; i < lines; ++i) {
        last = writer.waitForLineWith("stored ");
    }
    return last.isEmpty() ? -1 : last.mid(7).trimmed().toLongLong();
}

void KillTest::aKilledWriterLeavesAWholeFileWithAllThatWasStored()
{
    const int rounds = roundsOr(20);
    QRandomGenerator random(1);
    qint64 next = 0;
    for (int round = 0; round < rounds; ++round) {
        ChildProcess writer(HISTORY_PROCESS, {"write", database, QString::number(next)});
        QVERIFY(writer.start());
        const qint64 promised = promise(writer, 1 + int(random.bounded(8)));
        QVERIFY2(promised >= next, writer.report());
        writer.kill();

        QCOMPARE(outputOf("sqlite3", {database, "PRAGMA integrity_check"}), QByteArray("ok\n"));
        next = check(database, promised);
        QVERIFY(next > promised);
    }
    QCOMPARE(storedEvents(database, HistoryEvent::Kind::RecorderStarted).size(), rounds);
    QCOMPARE(storedEvents(database, HistoryEvent::Kind::ClockSetBack).size(), 0);
    qInfo() << rounds << "deaths," << next << "numbers in each of ten series";
}

void KillTest::manyReadersSeeAWholeHistoryBesideTheWriter()
{
    const int count = roundsOr(20);
    ChildProcess writer(HISTORY_PROCESS, {"write", database, "0"});
    QVERIFY(writer.start());
    QVERIFY2(promise(writer, 3) > 0, writer.report());
    std::vector<std::unique_ptr<ChildProcess>> readers;
    for (int i = 0; i < count; ++i) {
        readers.push_back(
            std::make_unique<ChildProcess>(HISTORY_PROCESS, QStringList{"read", database, "20"}));
        QVERIFY(readers.back()->start());
    }
    for (const auto &reader : readers) {
        QVERIFY2(!reader->waitForLineWith("read ").isEmpty(), reader->report());
        QVERIFY(reader->waitForEnd());
        QCOMPARE(reader->exitCode(), 0);
    }
    const qint64 promised = promise(writer, 1); // it has been writing on
    QVERIFY2(promised > 0, writer.report());
    writer.kill();
    QVERIFY(check(database, promised) > promised);
}

void KillTest::aRestartedServerHasAllThatWasStored()
{
    PostgresCluster cluster;
    QCOMPARE(cluster.create(), QString());
    ChildProcess writer(HISTORY_PROCESS, {"write", cluster.database(), "0"});
    QVERIFY(writer.start());
    qint64 promised = -1;
    const int rounds = roundsOr(3);
    for (int round = 0; round < rounds; ++round) {
        promised = promise(writer, 3);
        QVERIFY2(promised >= 0, writer.report());
        cluster.kill();
        const QString problem = cluster.start();
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
        // Stored in the restarted server, all of it: the queue is larger than the outage.
        const QByteArray line = writer.waitForLineWith("stored ");
        QVERIFY2(!line.isEmpty(), writer.report());
        promised = line.mid(7).trimmed().toLongLong();
    }
    writer.kill();
    if (check(cluster.database(), promised) <= promised) {
        QFAIL(qPrintable(cluster.sql(
            "SELECT * FROM process_data_history.samples WHERE turn > 0 OR late > 0 LIMIT 5; "
            "SELECT * FROM process_data_history.series; "
            "SELECT * FROM process_data_history.events LIMIT 9")));
    }
    QCOMPARE(storedEvents(cluster.database(), HistoryEvent::Kind::SamplesDropped).size(), 0);
}

QTEST_GUILESS_MAIN(KillTest)

#include "KillTest.moc"
