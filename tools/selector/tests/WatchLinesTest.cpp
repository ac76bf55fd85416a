// SPDX-License-Identifier: MIT
// The lines of a watch in each format.
#include "WatchLines.h"

#include <QtTest>

namespace {

const qint64 noon = 1767268800123456789; // 2026-01-01 12:00:00.123 UTC
const QVector<QString> urls{"processdata://M/O/1/a", "processdata://M/O/1/b"};
const QJsonObject volts{{"type", "int8"}, {"unit", "V"}, {"session", 1}};

ReadResult good()
{
    return {
        urls.first(), ProcessValue(QVariant(5), ProcessDataDefinitions::NoError, noon), volts, {}};
}

ReadResult bad()
{
    return {urls.last(),
            ProcessValue(ProcessDataDefinitions::NoValue),
            {},
            {Finding::ServiceMissing, "not there"}};
}

QVector<SelectorChange> changes()
{
    return {compareProperties(0, urls.first(), volts,
                              {{"type", "int8"}, {"unit", "mV"}, {"session", 2}}),
            compareProperties(1, urls.last(), volts, {})};
}

} // namespace

class WatchLinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tablesHaveFixedColumns();
    void linesForAScreenAreShort();
    void csvHasOneFormForAllEvents();
    void jsonIsOneObjectALine();
    void timestampsStandInFrontOfEachLine();
    void whatHappenedIsTold_data();
    void whatHappenedIsTold();
};

void WatchLinesTest::initTestCase()
{
    qputenv("TZ", "UTC-2"); // two hours east of UTC
    tzset();
}

void WatchLinesTest::tablesHaveFixedColumns()
{
    const WatchLines lines(urls, {Format::Table, false, false});

    QCOMPARE(
        lines.header(),
        QString(
            "TIME                     URL                           VALUE  UNIT    ERROR      NOTE\n"));
    QCOMPARE(
        lines.value(0, good(), 0),
        QString("2026-01-01 14:00:00.123  processdata://M/O/1/a             5  V       NoError\n"));
    QCOMPARE(
        lines.value(1, bad(), noon),
        QString(
            "2026-01-01 14:00:00.123  processdata://M/O/1/b             -  -       NoValue    not there\n"));
    QCOMPARE(lines.signal("propertyChanged", changes(), noon),
             QString("2026-01-01 14:00:00.123  propertyChanged [0, 1]: 0 unit V -> mV; 1 lost\n"));
}

void WatchLinesTest::linesForAScreenAreShort()
{
    const qint64 day = 86400 * qint64(1000000000);
    Style screen;
    screen.width = 60;
    const WatchLines lines(urls, screen);

    QCOMPARE(lines.header(),
             QString("processdata://M/O/1/…\n"
                     "TIME          URL         VALUE  UNIT    ERROR      NOTE\n"));
    QCOMPARE(lines.value(0, good(), noon),
             QString("14:00:00.123  a               5  V       NoError\n"));
    QCOMPARE(lines.value(0, good(), noon + day),
             QString("2026-01-01 14:00:00.123  a               5  V       NoError\n"));
    QCOMPARE(lines.value(1, bad(), noon),
             QString("14:00:00.123  b                          NoValue\n    not there\n"));
    QCOMPARE(lines.signal("propertyChanged", changes(), noon),
             QString("14:00:00.123  propertyChanged [0, 1]: 0 unit V -> mV; 1 lost\n"));
}

void WatchLinesTest::csvHasOneFormForAllEvents()
{
    const WatchLines lines(urls, {Format::Csv, false, false});

    QCOMPARE(lines.header(), QString("event,time,url,value,unit,error,note,indices,label\n"));
    QCOMPARE(
        lines.value(0, good(), 0),
        QString("value,2026-01-01T14:00:00.123+02:00,processdata://M/O/1/a,5,V,NoError,,0,\n"));
    QCOMPARE(
        lines.value(1, bad(), noon),
        QString(
            "value,2026-01-01T14:00:00.123+02:00,processdata://M/O/1/b,,,NoValue,not there,1,\n"));
    QCOMPARE(
        lines.signal("propertyChanged", changes(), noon),
        QString("propertyChanged,2026-01-01T14:00:00.123+02:00,,,,,0 unit V -> mV; 1 lost,0 1,\n"));
}

void WatchLinesTest::jsonIsOneObjectALine()
{
    const WatchLines lines(urls, {Format::Json, true, true});

    QCOMPARE(lines.header(), QString());
    QCOMPARE(
        lines.value(0, good(), 0),
        QString(
            R"({"errorType":"NoError","event":"value","index":0,"schema":"selector.watch/1","status":"ok",)"
            R"("time":"2026-01-01T14:00:00.123+02:00","timestampNs":"1767268800123456789","type":"int8",)"
            R"("unit":"V","url":"processdata://M/O/1/a","value":5})"
            "\n"));
    QCOMPARE(
        lines.value(1, bad(), noon),
        QString(
            R"({"code":"serviceMissing","errorType":"NoValue","event":"value","index":1,)"
            R"("reason":"not there","schema":"selector.watch/1","status":"failed",)"
            R"("time":"2026-01-01T14:00:00.123+02:00","url":"processdata://M/O/1/b","value":null})"
            "\n"));
    QCOMPARE(
        lines.signal("processDataDescriptionChanged", changes(), noon),
        QString(
            R"({"changes":[{"index":0,"properties":["unit"],"url":"processdata://M/O/1/a","what":"changed"},)"
            R"({"index":1,"properties":[],"url":"processdata://M/O/1/b","what":"lost"}],)"
            R"("event":"processDataDescriptionChanged","indices":[0,1],"schema":"selector.watch/1",)"
            R"("time":"2026-01-01T14:00:00.123+02:00"})"
            "\n"));
}

void WatchLinesTest::timestampsStandInFrontOfEachLine()
{
    const qint64 second = 1000000000;
    const WatchLines table(urls, {Format::Table, false, false}, true);
    QVERIFY(table.header().startsWith("SEEN                     TIME                     URL"));
    QVERIFY(table.value(0, good(), noon + second)
                .startsWith("2026-01-01 14:00:01.123  2026-01-01 14:00:00.123  processdata:"));

    const WatchLines csv(urls, {Format::Csv, false, false}, true);
    QCOMPARE(csv.header(), QString("seen,event,time,url,value,unit,error,note,indices,label\n"));
    QCOMPARE(csv.value(0, good(), noon + second),
             QString("2026-01-01T14:00:01.123+02:00,value,2026-01-01T14:00:00.123+02:00,"
                     "processdata://M/O/1/a,5,V,NoError,,0,\n"));

    const WatchLines json(urls, {Format::Json, false, false}, true);
    QVERIFY(json.value(0, good(), noon + second)
                .contains("\"seen\":\"2026-01-01T14:00:01.123+02:00\""));
    QVERIFY(json.signal("propertyChanged", {}, noon + second)
                .contains("\"seen\":\"2026-01-01T14:00:01.123+02:00\""));
}

void WatchLinesTest::whatHappenedIsTold_data()
{
    QTest::addColumn<QJsonObject>("before");
    QTest::addColumn<QJsonObject>("after");
    QTest::addColumn<int>("what");
    QTest::addColumn<QString>("text");

    const QJsonObject none;
    QTest::newRow("a leaf comes up") << none << volts << int(SelectorChange::Found) << "found";
    QTest::newRow("a leaf goes") << volts << none << int(SelectorChange::Lost) << "lost";
    QTest::newRow("only the session differs")
        << volts << QJsonObject{{"type", "int8"}, {"unit", "V"}, {"session", 2}}
        << int(SelectorChange::Restarted) << "publisher restarted";
    QTest::newRow("a property comes and one goes")
        << volts << QJsonObject{{"type", "int8"}, {"maximum", 9}} << int(SelectorChange::Changed)
        << "maximum nothing -> 9, unit V -> nothing";
}

void WatchLinesTest::whatHappenedIsTold()
{
    QFETCH(QJsonObject, before);
    QFETCH(QJsonObject, after);
    QFETCH(int, what);
    QFETCH(QString, text);

    const SelectorChange change = compareProperties(3, "u", before, after);

    QCOMPARE(change.index, 3);
    QCOMPARE(int(change.what), what);
    QCOMPARE(change.text, text);
}

QTEST_APPLESS_MAIN(WatchLinesTest)
#include "WatchLinesTest.moc"
