// SPDX-License-Identifier: MIT
// Live values become samples; what is missing, an event.
#include "BusTestMain.h"
#include "HistoryRecorder.h"
#include "HistorySupport.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

using namespace HistorySupport;
using Kind = HistoryEvent::Kind;

namespace {

RecordedSelector everyChange(const QString &url)
{
    RecordedSelector selector;
    selector.url = url;
    selector.every = 1'000'000;
    return selector;
}

QVector<HistoryEvent> withSubject(const QVector<HistoryEvent> &all, const QString &subject)
{
    QVector<HistoryEvent> found;
    for (const HistoryEvent &event : all) {
        if (event.subject == subject) {
            found << event;
        }
    }
    return found;
}

} // namespace

class RecorderTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aSampleHasTheValueTheTimeAndTheTypeOfItsLeaf_data();
    void aSampleHasTheValueTheTimeAndTheTypeOfItsLeaf();
    void whatWasNeverPublishedIsStoredOnce();
    void aValueThatIsNotPublishedAgainIsStoredOnce();
    void aDeadbandInPercentIsOfTheRange();
    void noSampleComesBeforeItsTurn();
    void aKilledPublisherIsALossAndAReturn();
    void aSourceThatIsNotThereYetIsRecordedWhenItComes();
    void aMissingLeafIsAnEventOfItsOwn();
    void aChangedUnitIsAnEventAndBeginsASeries();

private:
    QString url(const QString &path) const { return selectorUrl(module, path); }
    QString source() const { return "processdata://" + module + "/Controller/1"; }
    QVector<HistorySample> recorded(const QString &path)
    {
        return writer->flush() ? stored(database, url(path)) : QVector<HistorySample>();
    }
    QVector<HistoryEvent> recordedEvents(Kind kind, const QString &subject)
    {
        return writer->flush() ? withSubject(storedEvents(database, kind), subject)
                               : QVector<HistoryEvent>();
    }
    std::function<qint64()> clock()
    {
        return [this] { return now; };
    }

    qint64 now = 0;
    QScopedPointer<QTemporaryDir> folder;
    QString database;
    QScopedPointer<HistoryWriter> writer;
    QScopedPointer<PublisherProcess> publisher;
};

void RecorderTest::init()
{
    SystemTest::init();
    now = 1000 * second;
    folder.reset(new QTemporaryDir);
    database = folder->filePath("h.db");
    writer.reset(new HistoryWriter(settings(database)));
    QVERIFY2(writer->open(), qPrintable(writer->errorText()));
    publisher.reset(new PublisherProcess);
}

void RecorderTest::cleanup()
{
    publisher.reset();
    writer.reset();
    folder.reset();
    SystemTest::cleanup();
}

void RecorderTest::aSampleHasTheValueTheTimeAndTheTypeOfItsLeaf_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QJsonValue>("published");
    QTest::addColumn<QVariant>("wanted");
    QTest::newRow("bool") << "bool" << QJsonValue(true) << QVariant(true);
    QTest::newRow("int8") << "int8" << QJsonValue(-5) << QVariant::fromValue(qint8(-5));
    QTest::newRow("int16") << "int16" << QJsonValue(-500) << QVariant::fromValue(qint16(-500));
    QTest::newRow("int32") << "int32" << QJsonValue(-50000) << QVariant(-50000);
    QTest::newRow("int64") << "int64" << QJsonValue(-5e9) << QVariant(qint64(-5000000000));
    QTest::newRow("uint8") << "uint8" << QJsonValue(200) << QVariant::fromValue(quint8(200));
    QTest::newRow("uint16") << "uint16" << QJsonValue(60000) << QVariant::fromValue(quint16(60000));
    QTest::newRow("uint32") << "uint32" << QJsonValue(4e9) << QVariant(4000000000U);
    QTest::newRow("uint64") << "uint64" << QJsonValue(5e9) << QVariant(quint64(5000000000));
    QTest::newRow("float32") << "float32" << QJsonValue(0.5) << QVariant(0.5F);
    QTest::newRow("float64") << "float64" << QJsonValue(0.1) << QVariant(0.1);
    QTest::newRow("string") << "string" << QJsonValue("north") << QVariant("north");
}

void RecorderTest::aSampleHasTheValueTheTimeAndTheTypeOfItsLeaf()
{
    QFETCH(const QString, type);
    QFETCH(const QJsonValue, published);
    QFETCH(const QVariant, wanted);
    QJsonObject more{{"unit", "V"}, {"description", "A leaf"}};
    if (type == "string") {
        more.insert("capacity", 16);
    }
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", type, more)})));
    VERIFY_COMMAND(publisher->publish("n", published));
    SelectorHandlerProcessValue handler({url("n")}, nullptr);

    HistoryRecorder recorder({everyChange(url("n"))}, *writer, clock());
    recorder.look();

    const QVector<HistorySample> samples = recorded("n");
    QCOMPARE(samples.size(), 1);
    QCOMPARE(samples.at(0).value, wanted);
    QCOMPARE(samples.at(0).value.userType(), wanted.userType());
    QCOMPARE(samples.at(0).time, handler.getValue(0).getTimestamp());
    QVERIFY(samples.at(0).time > 0);
    QCOMPARE(samples.at(0).errorType, ProcessDataDefinitions::NoError);
    HistoryReader reader;
    QVector<HistorySeries> series;
    QVERIFY(reader.open(database) && reader.series(url("n"), &series));
    QCOMPARE(series.size(), 1);
    QCOMPARE(series.at(0).unit, QString("V"));
    QCOMPARE(series.at(0).description, QString("A leaf"));
    QCOMPARE(recorder.outcome(0).samples, qint64(1));
}

void RecorderTest::whatWasNeverPublishedIsStoredOnce()
{
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32")})));
    HistoryRecorder recorder({everyChange(url("n"))}, *writer, clock());
    for (int i = 0; i < 3; ++i, now += second) {
        recorder.look();
    }

    const QVector<HistorySample> samples = recorded("n");
    QCOMPARE(samples.size(), 1);
    QCOMPARE(samples.at(0).time, 1000 * second);
    QCOMPARE(samples.at(0).errorType, ProcessDataDefinitions::NotInitialized);
}

void RecorderTest::aValueThatIsNotPublishedAgainIsStoredOnce()
{
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher->publish("n", 5));
    RecordedSelector selector = everyChange(url("n"));
    selector.atLeastEvery = second;
    HistoryRecorder recorder({selector}, *writer, clock());
    recorder.look();
    now += 2 * second;
    recorder.look();
    QCOMPARE(recorder.outcome(0).samples, qint64(1));

    VERIFY_COMMAND(publisher->publish("n", 5));
    recorder.look(); // too early
    QCOMPARE(recorder.outcome(0).samples, qint64(1));
    now += 2 * second;
    recorder.look();
    QCOMPARE(recorder.outcome(0).samples, qint64(2));
    QCOMPARE(recorded("n").size(), 2);
}

void RecorderTest::aDeadbandInPercentIsOfTheRange()
{
    VERIFY_COMMAND(
        publisher->serve(module,
                         description({leaf("n", "float64", {{"minimum", 100}, {"maximum", 300}}),
                                      leaf("free", "float64")})));
    RecordedSelector selector = everyChange(url("n"));
    selector.deadband = 5; // percent of 200
    selector.deadbandIsPercent = true;
    RecordedSelector free = selector;
    free.url = url("free");
    HistoryRecorder recorder({selector, free}, *writer, clock());
    for (const double value : {200.0, 210.0, 210.5, 209.0, 200.25}) {
        VERIFY_COMMAND(publisher->publish("n", value));
        VERIFY_COMMAND(publisher->publish("free", value));
        now += second;
        recorder.look();
    }

    QVector<double> values;
    const QVector<HistorySample> samples = recorded("n");
    for (const HistorySample &sample : samples) {
        values << sample.value.toDouble();
    }
    QCOMPARE(values, (QVector<double>{200.0, 210.5, 200.25}));
    QCOMPARE(recorded("free").size(), 5); // it has no range
}

void RecorderTest::noSampleComesBeforeItsTurn()
{
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32"), leaf("m", "int32")})));
    RecordedSelector seldom = everyChange(url("n"));
    seldom.every = 10 * second;
    HistoryRecorder recorder({seldom, everyChange(url("m"))}, *writer, clock());
    for (int i = 0; i < 21; ++i, now += second) {
        VERIFY_COMMAND(publisher->publish("n", i));
        VERIFY_COMMAND(publisher->publish("m", i));
        recorder.look();
    }
    QCOMPARE(recorded("m").size(), 21);
    const QVector<HistorySample> samples = recorded("n");
    QCOMPARE(samples.size(), 3);
    QCOMPARE(samples.at(1).value, QVariant(10));
    QCOMPARE(samples.at(2).value, QVariant(20));
}

void RecorderTest::aKilledPublisherIsALossAndAReturn()
{
    const QJsonObject one = description({leaf("n", "int32"), leaf("m", "int32")});
    VERIFY_COMMAND(publisher->serve(module, one));
    VERIFY_COMMAND(publisher->publish("n", 1));
    HistoryRecorder recorder({everyChange(url("n")), everyChange(url("m"))}, *writer, clock());
    recorder.look();
    QVERIFY(!recorder.outcome(0).isLost);
    publisher->process().kill();
    now += second;
    recorder.look();
    QVERIFY(recorder.outcome(0).isLost);
    now += second;
    recorder.look(); // still lost: nothing new to say
    QCOMPARE(recordedEvents(Kind::SourceLost, source()).size(), 1);

    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(module, one));
    VERIFY_COMMAND(publisher->publish("n", 1));
    QTRY_VERIFY_WITH_TIMEOUT((recorder.look(), !recorder.outcome(0).isLost), 20000);
    VERIFY_COMMAND(publisher->publish("n", 2));
    now += second;
    recorder.look();

    const QVector<HistoryEvent> lost = recordedEvents(Kind::SourceLost, source());
    const QVector<HistoryEvent> returned = recordedEvents(Kind::SourceReturned, source());
    QCOMPARE(lost.size(), 1);
    QCOMPARE(returned.size(), 1);
    QCOMPARE(lost.at(0).time, 1001 * second);
    QCOMPARE(returned.at(0).time, 1002 * second);
    // The last value of the killed one is marked; a restart alone changes no description.
    QVector<int> values;
    QVector<int> errors;
    const QVector<HistorySample> samples = recorded("n");
    for (const HistorySample &sample : samples) {
        QVERIFY(!sample.late);
        if (sample.errorType != ProcessDataDefinitions::NotInitialized) {
            values << sample.value.toInt();
            errors << int(sample.errorType);
        }
    }
    QCOMPARE(values, (QVector<int>{1, 1, 1, 2}));
    QCOMPARE(errors, (QVector<int>{0, 2, 0, 0}));
    QCOMPARE(samples.at(0).time, samples.at(1).time);
    QCOMPARE(recordedEvents(Kind::DescriptionChanged, source()).size(), 0);
    QCOMPARE(recordedEvents(Kind::SourceLost, url("n")).size(), 0);
}

void RecorderTest::aSourceThatIsNotThereYetIsRecordedWhenItComes()
{
    HistoryRecorder recorder({everyChange(url("n"))}, *writer, clock());
    recorder.look();
    QCOMPARE(recordedEvents(Kind::SourceLost, source()).size(), 1);
    QCOMPARE(recorded("n").size(), 0);
    QVERIFY(recorder.outcome(0).isLost);

    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32", {{"unit", "A"}})})));
    VERIFY_COMMAND(publisher->publish("n", 7));
    now += second;
    QTRY_VERIFY_WITH_TIMEOUT((recorder.look(), !recorder.outcome(0).isLost), 20000);

    QCOMPARE(recorded("n").constLast().value, QVariant(7));
    const QVector<HistoryEvent> returned = recordedEvents(Kind::SourceReturned, source());
    QCOMPARE(returned.size(), 1);
    QCOMPARE(returned.at(0).time, 1001 * second);
    QCOMPARE(recordedEvents(Kind::DescriptionChanged, source()).size(), 0);
}

void RecorderTest::aMissingLeafIsAnEventOfItsOwn()
{
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher->publish("n", 7));
    HistoryRecorder recorder({everyChange(url("n")), everyChange(url("m"))}, *writer, clock());
    recorder.look();
    QVERIFY(!recorder.outcome(0).isLost);
    QVERIFY(recorder.outcome(1).isLost);
    QCOMPARE(recordedEvents(Kind::SourceLost, source()).size(), 0);
    QCOMPARE(recordedEvents(Kind::SourceLost, url("m")).size(), 1);

    VERIFY_COMMAND(
        publisher->replaceDescription(description({leaf("n", "int32"), leaf("m", "int32")})));
    VERIFY_COMMAND(publisher->publish("m", 8));
    QTRY_VERIFY_WITH_TIMEOUT((recorder.look(), !recorder.outcome(1).isLost), 20000);
    QCOMPARE(recordedEvents(Kind::SourceReturned, url("m")).size(), 1);
    QCOMPARE(recorded("m").constLast().value, QVariant(8));
}

void RecorderTest::aChangedUnitIsAnEventAndBeginsASeries()
{
    VERIFY_COMMAND(publisher->serve(module, description({leaf("n", "int32", {{"unit", "A"}})})));
    VERIFY_COMMAND(publisher->publish("n", 7));
    HistoryRecorder recorder({everyChange(url("n"))}, *writer, clock());
    recorder.look();

    now += second;
    VERIFY_COMMAND(
        publisher->replaceProperties(description({leaf("n", "int32", {{"unit", "mA"}})})));
    QTRY_COMPARE_WITH_TIMEOUT(recordedEvents(Kind::DescriptionChanged, source()).size(), 1, 20000);
    VERIFY_COMMAND(publisher->publish("n", 7000));
    recorder.look();

    QCOMPARE(recordedEvents(Kind::DescriptionChanged, source()).at(0).text, QString("n: unit"));
    QCOMPARE(recorded("n").constLast().value, QVariant(7000));
    HistoryReader reader;
    QVector<HistorySeries> series;
    QVERIFY(reader.open(database) && reader.series(url("n"), &series));
    QCOMPARE(series.size(), 2);
    QCOMPARE(series.at(0).unit, QString("A"));
    QCOMPARE(series.at(1).unit, QString("mA"));
}

BUS_TEST_MAIN(RecorderTest)

#include "RecorderTest.moc"
