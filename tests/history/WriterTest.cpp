// SPDX-License-Identifier: MIT
// Appending: when it is stored, what of one time is kept, what a clock that is set back leaves.
#include "HistorySupport.h"

#include <QUuid>

using namespace HistorySupport;

class WriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { database = folder.filePath(QUuid::createUuid().toString(QUuid::Id128)); }

    void samplesAreStoredWithinACommitInterval();
    void samplesAreStoredWhenTheWriterEnds();
    void ofEqualSamplesOneIsStored();
    void samplesOfOneTimeThatDifferAreAllStoredInTheirOrder();
    void timesThatRunBackwardsAreKeptMarkedAndRecorded();
    void anEqualSampleIsKnownAgainAfterARestart();
    void aSelectorThatChangesItsTypeBeginsASeries();
    void anUnchangedSelectorContinuesItsSeries();
    void aStartRecordsSinceWhenNothingIsKnown();
    void aFullQueueDropsTheOldestAndRecordsHowMany();
    void onlyOneWriterMayHaveADatabaseOpen();
    void impossibleSettingsAreRefused_data();
    void impossibleSettingsAreRefused();

private:
    QTemporaryDir folder;
    QString database;
    const QString selector = numbers().selector;
};

void WriterTest::samplesAreStoredWithinACommitInterval()
{
    HistorySettings settings;
    settings.database = database;
    settings.commitEvery = 1;
    HistoryWriter writer(settings);
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));

    QVERIFY(writer.append(writer.addSeries(numbers()), sample(5, qint64(7))));

    QTRY_COMPARE(stored(database, selector).size(), 1);
}

void WriterTest::samplesAreStoredWhenTheWriterEnds()
{
    {
        HistoryWriter writer(settings(database));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        QVERIFY(writer.append(writer.addSeries(numbers()), sample(5, qint64(7))));
        QCOMPARE(stored(database, selector).size(), 0);
    }
    QCOMPARE(stored(database, selector).size(), 1);
    QCOMPARE(storedEvents(database, HistoryEvent::Kind::RecorderEnded).size(), 1);
}

void WriterTest::ofEqualSamplesOneIsStored()
{
    HistoryWriter writer(settings(database));
    QVERIFY(writer.open());
    const int series = writer.addSeries(numbers());
    for (int i = 0; i < 3; ++i) {
        QVERIFY(writer.append(series, sample(5, qint64(7))));
        QVERIFY(writer.flush());
        QVERIFY(writer.append(series, sample(5, qint64(7))));
    }
    QVERIFY(writer.flush());
    QCOMPARE(stored(database, selector).size(), 1);
}

void WriterTest::samplesOfOneTimeThatDifferAreAllStoredInTheirOrder()
{
    HistoryWriter writer(settings(database));
    QVERIFY(writer.open());
    const int series = writer.addSeries(numbers());
    QVERIFY(writer.append(series, sample(5, qint64(7))));
    QVERIFY(writer.append(series, sample(5, qint64(7), ProcessDataDefinitions::SourceLost)));
    QVERIFY(writer.append(series, sample(5, qint64(1))));
    QVERIFY(writer.append(series, sample(5, qint64(7)))); // the first again
    QVERIFY(writer.flush());

    const QVector<HistorySample> found = stored(database, selector);
    QCOMPARE(found.size(), 3);
    QCOMPARE(found.at(0).errorType, ProcessDataDefinitions::NoError);
    QCOMPARE(found.at(1).errorType, ProcessDataDefinitions::SourceLost);
    QCOMPARE(found.at(2).value, QVariant(qint64(1)));
    QVERIFY(!found.at(2).late);
}

void WriterTest::timesThatRunBackwardsAreKeptMarkedAndRecorded()
{
    HistorySettings chosen = settings(database);
    chosen.clock = [] { return qint64(1000); };
    HistoryWriter writer(chosen);
    QVERIFY(writer.open());
    const int series = writer.addSeries(numbers());
    for (const qint64 time : {100, 200, 150, 160, 300}) {
        QVERIFY(writer.append(series, sample(time, time)));
    }
    QVERIFY(writer.flush());

    QVector<qint64> times;
    QVector<qint64> late;
    for (const HistorySample &found : stored(database, selector)) {
        times << found.time;
        if (found.late) {
            late << found.time;
        }
    }
    QCOMPARE(times, (QVector<qint64>{100, 150, 160, 200, 300}));
    QCOMPARE(late, (QVector<qint64>{150, 160}));
    const QVector<HistoryEvent> events = storedEvents(database, HistoryEvent::Kind::ClockSetBack);
    QCOMPARE(events.size(), 1);
    QCOMPARE(events.at(0).from, qint64(200));
    QCOMPARE(events.at(0).until, qint64(150));
    QCOMPARE(events.at(0).number, qint64(1));
    QCOMPARE(events.at(0).subject, selector);
}

void WriterTest::anEqualSampleIsKnownAgainAfterARestart()
{
    for (int i = 0; i < 2; ++i) {
        HistoryWriter writer(settings(database));
        QVERIFY(writer.open());
        const int series = writer.addSeries(numbers());
        QVERIFY(writer.append(series, sample(5, qint64(7))));
        QVERIFY(writer.append(series, sample(6, qint64(8))));
    }
    QCOMPARE(stored(database, selector).size(), 2);
    QCOMPARE(storedEvents(database, HistoryEvent::Kind::ClockSetBack).size(), 0);
}

void WriterTest::aSelectorThatChangesItsTypeBeginsASeries()
{
    HistoryWriter writer(settings(database));
    QVERIFY(writer.open());
    HistorySeries other = numbers();
    other.type = HistoryType::Text;
    QVERIFY(writer.append(writer.addSeries(numbers()), sample(5, qint64(7))));
    QVERIFY(writer.append(writer.addSeries(other), sample(6, "seven")));
    QVERIFY(writer.flush());

    HistoryReader reader;
    QVector<HistorySeries> found;
    QVERIFY(reader.open(database) && reader.series(selector, &found));
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.at(0).type, HistoryType::Int64);
    QCOMPARE(found.at(1).type, HistoryType::Text);
    QCOMPARE(found.at(1).since, qint64(6));
    const QVector<HistorySample> all = stored(database, selector);
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.at(0).value, QVariant(qint64(7)));
    QCOMPARE(all.at(1).value, QVariant("seven"));
}

void WriterTest::anUnchangedSelectorContinuesItsSeries()
{
    for (qint64 time : {5, 6}) {
        HistoryWriter writer(settings(database));
        QVERIFY(writer.open());
        QCOMPARE(writer.addSeries(numbers()), writer.addSeries(numbers()));
        QVERIFY(writer.append(writer.addSeries(numbers()), sample(time, time)));
    }
    HistoryReader reader;
    QVector<HistorySeries> found;
    QVERIFY(reader.open(database) && reader.series(selector, &found));
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.at(0).since, qint64(5));
    QCOMPARE(found.at(0).unit, QString("1/min"));
}

void WriterTest::aStartRecordsSinceWhenNothingIsKnown()
{
    HistorySettings chosen = settings(database);
    chosen.clock = [] { return qint64(100); };
    for (qint64 time : {5, 106}) {
        HistoryWriter writer(chosen);
        QVERIFY(writer.open());
        QVERIFY(writer.append(writer.addSeries(numbers()), sample(time, time)));
        QVERIFY(writer.flush());
        chosen.clock = [time] { return time + 200; };
    }
    const QVector<HistoryEvent> starts
        = storedEvents(database, HistoryEvent::Kind::RecorderStarted);
    QCOMPARE(starts.size(), 2);
    QCOMPARE(starts.at(0).from, qint64(0));
    QCOMPARE(starts.at(1).from,
             storedEvents(database, HistoryEvent::Kind::RecorderEnded).at(0).time);
    QCOMPARE(starts.at(1).until, qint64(205));
}

void WriterTest::aFullQueueDropsTheOldestAndRecordsHowMany()
{
    HistorySettings chosen = settings(database);
    chosen.queueLimit = 65536;
    HistoryWriter writer(chosen);
    const int series = writer.addSeries(numbers());
    const int all = 5000; // before it is open, so nothing can be written in between
    for (qint64 time = 0; time < all; ++time) {
        QVERIFY(writer.append(series, sample(time, time)));
    }
    QVERIFY(writer.waitingBytes() <= chosen.queueLimit);
    const qint64 dropped = writer.dropped();
    QVERIFY(dropped > 0);
    qint64 reported = 0;
    connect(
        &writer, &HistoryWriter::samplesDropped, this,
        [&reported](qint64 count) { reported += count; }, Qt::DirectConnection);
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));
    QVERIFY(writer.flush());

    const QVector<HistorySample> found = stored(database, selector);
    QCOMPARE(qint64(found.size()), all - dropped);
    QCOMPARE(found.at(0).time, dropped); // the oldest went
    const QVector<HistoryEvent> events = storedEvents(database, HistoryEvent::Kind::SamplesDropped);
    QCOMPARE(events.size(), 1);
    QCOMPARE(events.at(0).number, dropped);
    QCOMPARE(events.at(0).from, qint64(0));
    QCOMPARE(events.at(0).until, dropped - 1);
    QCOMPARE(reported, dropped);
}

void WriterTest::onlyOneWriterMayHaveADatabaseOpen()
{
    HistoryWriter first(settings(database));
    QVERIFY(first.open());
    HistoryWriter second(settings(database));

    QVERIFY(!second.open());
    QCOMPARE(second.errorText(),
             database
                 + " is being written by another process; end that one, or choose another file");
}

void WriterTest::impossibleSettingsAreRefused_data()
{
    QTest::addColumn<int>("commitEvery");
    QTest::addColumn<qint64>("queueLimit");
    QTest::addColumn<qint64>("maxSize");
    QTest::addColumn<qint64>("keep");
    QTest::addColumn<QString>("error");
    QTest::newRow("no interval") << 0 << qint64(65536) << qint64(0) << qint64(0)
                                 << "the commit interval is 0 ms; expected 1 to 3600000";
    QTest::newRow("a tiny queue")
        << 1 << qint64(65535) << qint64(0) << qint64(0)
        << "the limit of the queue is 65535 bytes; expected at least 65536";
    QTest::newRow("a tiny database")
        << 1 << qint64(65536) << qint64(16777215) << qint64(0)
        << "the largest size is 16777215 bytes; expected at least 16777216, or 0 for no limit";
    QTest::newRow("a negative age")
        << 1 << qint64(65536) << qint64(0) << qint64(-1)
        << "the age to keep is negative; expected nanoseconds, or 0 for all";
}

void WriterTest::impossibleSettingsAreRefused()
{
    QFETCH(QString, error);
    QFETCH(int, commitEvery);
    QFETCH(qint64, queueLimit);
    QFETCH(qint64, maxSize);
    QFETCH(qint64, keep);
    HistoryWriter writer({database, keep, maxSize, commitEvery, queueLimit, 60000, {}});
    QVERIFY(!writer.open());
    QCOMPARE(writer.errorText(), error);
}

QTEST_GUILESS_MAIN(WriterTest)

#include "WriterTest.moc"
