// SPDX-License-Identifier: MIT
// A gap never looks like a steady value: events say when nothing is known, and of what.
#include "HistorySupport.h"

#include <atomic>

using namespace HistorySupport;
using Kind = HistoryEvent::Kind;

namespace {

QString text(const QVector<HistoryGap> &gaps)
{
    QStringList all;
    for (const HistoryGap &gap : gaps) {
        all << QString("%1-%2 kind %3 number %4")
                   .arg(gap.from)
                   .arg(gap.until)
                   .arg(int(gap.kind))
                   .arg(gap.number);
    }
    return all.join(", ");
}

} // namespace

class GapsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        database = folder->filePath("h.db");
        now = 10;
    }

    void aLostSourceIsAGapOfItsSelectorsAlone();
    void aSourceThatStaysLostIsAGapToTheEnd();
    void betweenTwoRecordersNothingIsKnown();
    void afterARecorderEndedNothingIsKnown();
    void droppedSamplesAreAGapOfTheirTimes();
    void eventsComeBackWholeAndInOrder();
    void whatIsInADatabaseIsTold();

private:
    HistorySettings chosen()
    {
        HistorySettings settings = HistorySupport::settings(database);
        settings.clock = [this] { return now.load(); };
        return settings;
    }
    QString gaps(const QString &selector, qint64 from, qint64 until)
    {
        HistoryReader reader;
        QVector<HistoryGap> found;
        return reader.open(database) && reader.gaps(selector, from, until, &found)
            ? text(found)
            : reader.errorText();
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString database;
    std::atomic<qint64> now{10};
    const QString source = "processdata://Pump/C/1";
};

void GapsTest::aLostSourceIsAGapOfItsSelectorsAlone()
{
    HistoryWriter writer(chosen());
    QVERIFY(writer.open());
    writer.append({100, Kind::SourceLost, source});
    writer.append({200, Kind::SourceReturned, source});
    writer.append({150, Kind::SourceLost, "processdata://Pump/C/2"});
    writer.append({160, Kind::SourceReturned, "processdata://Pump/C/2"});
    QVERIFY(writer.flush());

    QCOMPARE(gaps(source + "/n", 0, 1000), QString("100-200 kind 0 number 0"));
    QCOMPARE(gaps(source + "0/n", 0, 1000), QString());
    QCOMPARE(gaps(source, 0, 1000), QString("100-200 kind 0 number 0"));
    QCOMPARE(gaps(source + "/n", 120, 130), QString("120-130 kind 0 number 0"));
    QCOMPARE(gaps(source + "/n", 200, 300), QString());
    QCOMPARE(gaps("processdata://Pump/C/2/n", 0, 1000), QString("150-160 kind 0 number 0"));
}

void GapsTest::aSourceThatStaysLostIsAGapToTheEnd()
{
    HistoryWriter writer(chosen());
    QVERIFY(writer.open());
    writer.append({100, Kind::SourceLost, source});
    writer.append({110, Kind::SourceLost, source}); // again, as after a restart of its client
    QVERIFY(writer.flush());
    QCOMPARE(gaps(source + "/n", 500, 1000), QString("500-1000 kind 0 number 0"));
    QCOMPARE(gaps(source + "/n", 0, 1000), QString("100-1000 kind 0 number 0"));
}

void GapsTest::betweenTwoRecordersNothingIsKnown()
{
    for (const qint64 start : {10, 500}) {
        now = start;
        HistoryWriter writer(chosen());
        QVERIFY(writer.open());
        QVERIFY(writer.append(writer.addSeries(numbers()), sample(start + 50, start)));
        QVERIFY(writer.flush());
        now = start + 100;
    }
    QCOMPARE(gaps("any", 0, 600), QString("110-500 kind 4 number 0"));
}

void GapsTest::afterARecorderEndedNothingIsKnown()
{
    {
        HistoryWriter writer(chosen());
        QVERIFY(writer.open());
        QVERIFY(writer.flush()); // else the writer's thread may ask for the time in between
        now = 300;
    }
    QCOMPARE(gaps("any", 0, 1000), QString("300-1000 kind 4 number 0"));
    QCOMPARE(gaps("any", 0, 300), QString());
}

void GapsTest::droppedSamplesAreAGapOfTheirTimes()
{
    HistorySettings settings = chosen();
    settings.queueLimit = 65536;
    HistoryWriter writer(settings);
    const int series = writer.addSeries(numbers());
    for (qint64 time = 1; writer.dropped() < 70; ++time) {
        QVERIFY(writer.append(series, sample(time, time)));
    }
    now = 1000000;
    QVERIFY(writer.open());
    QVERIFY(writer.flush());
    QCOMPARE(gaps(numbers().selector, 0, 100), QString("1-70 kind 5 number 70"));
}

void GapsTest::eventsComeBackWholeAndInOrder()
{
    HistoryWriter writer(chosen());
    QVERIFY(writer.open());
    for (int i = 0; i < 3; ++i) { // the same event is the same event
        writer.append({300, Kind::DescriptionChanged, source, 1, 2, 3, "two leaves are new"});
        writer.append({200, Kind::SourceLost, source});
        QVERIFY(writer.flush());
    }
    HistoryReader reader;
    QVector<HistoryEvent> found;
    QVERIFY(reader.open(database) && reader.events(100, 301, &found));
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.at(0).kind, Kind::SourceLost);
    QCOMPARE(found.at(0).time, qint64(200));
    QCOMPARE(found.at(1).kind, Kind::DescriptionChanged);
    QCOMPARE(found.at(1).subject, source);
    QCOMPARE(found.at(1).from, qint64(1));
    QCOMPARE(found.at(1).until, qint64(2));
    QCOMPARE(found.at(1).number, qint64(3));
    QCOMPARE(found.at(1).text, QString("two leaves are new"));
    QVERIFY(reader.events(100, 300, &found));
    QCOMPARE(found.size(), 1);
}

void GapsTest::whatIsInADatabaseIsTold()
{
    HistoryWriter writer(chosen());
    QVERIFY(writer.open());
    QVERIFY(writer.append(writer.addSeries(numbers("b")), sample(5, qint64(1))));
    QVERIFY(writer.append(writer.addSeries(numbers("b")), sample(9, qint64(2))));
    QVERIFY(writer.append(writer.addSeries(numbers("a")), sample(7, qint64(3))));
    writer.append({8, Kind::SamplesDropped, "", 1, 2, 42, ""});
    QVERIFY(writer.flush());

    HistoryReader reader;
    HistoryInfo info;
    QStringList selectors;
    QVERIFY(reader.open(database) && reader.info(&info) && reader.selectors(&selectors));
    QCOMPARE(selectors, QStringList({"a", "b"}));
    QCOMPARE(info.version, 1);
    QCOMPARE(info.dropped, qint64(42));
    QVERIFY(info.bytes > 0);
    QCOMPARE(info.series.size(), 2);
    QCOMPARE(info.series.at(1).series.selector, QString("b"));
    QCOMPARE(info.series.at(1).samples, qint64(2));
    QCOMPARE(info.series.at(1).first, qint64(5));
    QCOMPARE(info.series.at(1).last, qint64(9));
}

QTEST_GUILESS_MAIN(GapsTest)

#include "GapsTest.moc"
