// SPDX-License-Identifier: MIT
// Rows of instants, steady ticks and ages that are too old.
#include "WideView.h"
#include "MaximumAge.h"
#include "SteadyTicks.h"

#include <QtTest>

namespace {

const qint64 second = 1000000000;
const qint64 noon = 1767268800 * second;
const QVector<ListLine> selectors{listLine(0, "processdata://M/O/1/a"),
                                  listLine(0, "two=processdata://M/O/1/b"),
                                  listLine(0, "processdata://M/O/2/a")};

ReadResult result(const QVariant &value, ProcessDataDefinitions::ErrorTypes errorType)
{
    return {"", ProcessValue(value, errorType, noon), {}, {}};
}

QVector<ReadResult> results()
{
    QVector<ReadResult> all{result(1.5, ProcessDataDefinitions::NoError),
                            result("x, \"y\"", ProcessDataDefinitions::NoError),
                            result(7, ProcessDataDefinitions::SourceLost)};
    return all;
}

struct Printed
{
    explicit Printed(Format format)
        : out(&text)
        , err(&errors)
        , view(watchTargets(selectors), {out, err, {format}, false})
    {
    }

    QString text;
    QString errors;
    QTextStream out;
    QTextStream err;
    WideView view;
};

} // namespace

class WideViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void csvHasAColumnForEachSelector();
    void jsonHasAnArrayOfValues();
    void aTableIsAligned();
    void staleValuesAreLeftOut();
    void aTickIsAMultipleOfItsInterval();
    void tooOldIsOlderThanWanted_data();
    void tooOldIsOlderThanWanted();
};

void WideViewTest::initTestCase()
{
    qputenv("TZ", "UTC-2"); // two hours east of UTC
    tzset();
}

void WideViewTest::csvHasAColumnForEachSelector()
{
    const Printed csv(Format::Csv);
    QCOMPARE(csv.view.header(), QString("time,processdata://M/O/1/a,two,processdata://M/O/2/a\n"));
    QCOMPARE(csv.view.row(results(), noon),
             QString("2026-01-01T14:00:00.000+02:00,1.5,\"x, \"\"y\"\"\",\n"));
}

void WideViewTest::jsonHasAnArrayOfValues()
{
    const Printed json(Format::Json);
    QCOMPARE(json.view.header(), QString());
    QCOMPARE(json.view.row(results(), noon),
             QString(R"({"errorTypes":["NoError","NoError","SourceLost"],"event":"row",)"
                     R"("schema":"selector.watch/1","time":"2026-01-01T14:00:00.000+02:00",)"
                     R"("values":[1.5,"x, \"y\"",null]})"
                     "\n"));
}

void WideViewTest::aTableIsAligned()
{
    const Printed table(Format::Table);
    QCOMPARE(table.view.header(),
             QString("TIME                              1/a           two           2/a\n"));
    QCOMPARE(table.view.row(results(), noon),
             QString("2026-01-01 14:00:00.000           1.5        x, \"y\"             -\n"));
}

void WideViewTest::staleValuesAreLeftOut()
{
    const Printed csv(Format::Csv);
    QVector<ReadResult> all = results();
    all[0].finding = MaximumAge(1000).judge(all.at(0).value, noon + 2 * second);
    QCOMPARE(csv.view.row(all, noon),
             QString("2026-01-01T14:00:00.000+02:00,,\"x, \"\"y\"\"\",\n"));
}

void WideViewTest::aTickIsAMultipleOfItsInterval()
{
    const qint64 interval = 20; // milliseconds
    SteadyTicks ticks(interval);
    QVector<qint64> times;
    connect(&ticks, &SteadyTicks::ticked, this, [&](qint64 time) {
        times.append(time);
        if (times.size() == 2) { // too slow for the next ones
            QElapsedTimer busy;
            busy.start();
            while (busy.elapsed() < 3 * interval) { }
        }
    });
    ticks.start();
    QCOMPARE(times.size(), 1);
    QTRY_VERIFY(times.size() >= 5);
    ticks.stop();

    for (int i = 1; i < times.size(); ++i) {
        QVERIFY(times.at(i) > times.at(i - 1));
        QCOMPARE((times.at(i) - times.first()) % (interval * 1000000), qint64(0));
    }
    QVERIFY(times.at(2) - times.at(1) >= 3 * interval * 1000000);
}

void WideViewTest::tooOldIsOlderThanWanted_data()
{
    QTest::addColumn<int>("maximum");
    QTest::addColumn<qint64>("age");
    QTest::addColumn<QString>("text");
    QTest::newRow("any age") << 0 << 1000 * second << "";
    QTest::newRow("exactly") << 5000 << 5 * second << "";
    QTest::newRow("a bit more") << 5000 << 5 * second + 1 << "older than 5 s";
    QTest::newRow("milliseconds") << 1500 << 2 * second << "older than 1500 ms";
    QTest::newRow("minutes") << 120000 << 121 * second << "older than 2 min";
    QTest::newRow("hours") << 3600000 << 4000 * second << "older than 1 h";
    QTest::newRow("still to come") << 5000 << -9 * second << "";
}

void WideViewTest::tooOldIsOlderThanWanted()
{
    QFETCH(const int, maximum);
    QFETCH(const qint64, age);
    QFETCH(const QString, text);
    const ProcessValue lost(1, ProcessDataDefinitions::SourceLost, noon);
    QCOMPARE(MaximumAge(maximum).judge(lost, noon + age).text, text);
    const ProcessValue never(QVariant(), ProcessDataDefinitions::NotInitialized, 0);
    QVERIFY(MaximumAge(maximum).judge(never, noon).isNone());
    const ProcessValue absurd(1, ProcessDataDefinitions::NoError,
                              std::numeric_limits<qint64>::min());
    QCOMPARE(MaximumAge(maximum).judge(absurd, noon).isNone(), maximum == 0);

    ReadResult result{"u", lost, {}, MaximumAge(maximum).judge(lost, noon + age)};
    const Entry entry = readEntry(result);
    QCOMPARE(entry.state, Entry::Doubtful);
    QCOMPARE(entry.exitCode(), ExitSomeFailed);
    QCOMPARE(entry.json.value("code").toString(), QString(text.isEmpty() ? "" : "stale"));
    QCOMPARE(entry.reason,
             "the publisher is gone, this is its last value" + (text.isEmpty() ? "" : "; " + text));
    result.value.errorType = ProcessDataAccess::ErrorType::NoError;
    QCOMPARE(readEntry(result).state, text.isEmpty() ? Entry::Good : Entry::Doubtful);
}

QTEST_GUILESS_MAIN(WideViewTest)
#include "WideViewTest.moc"
