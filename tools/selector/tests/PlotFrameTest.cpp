// SPDX-License-Identifier: MIT
// Charts are told apart by their titles, and those that do not fit are counted.
#include "PlotFrame.h"
#include "TimeAxis.h"

#include <QtTest>

namespace {

const QString pump = "processdata://PumpStation/Pump/";

QVector<PlotPanel> panels(int count)
{
    QVector<PlotPanel> list;
    for (int i = 0; i < count; ++i) {
        list.append(PlotPanel(QString("chart%1").arg(i)));
    }
    return list;
}

QStringList titlesIn(const QStringList &frame)
{
    return frame.filter("chart");
}

} // namespace

class PlotFrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noTwoChartsHaveOneTitle_data();
    void noTwoChartsHaveOneTitle();
    void aFrameHoldsAllChartsThatFit();
    void chartsThatDoNotFitAreCounted_data();
    void chartsThatDoNotFitAreCounted();
    void theTimeAxisSaysHowLongAgoItWas();
    void theTimeAxisTakesOneLine();
};

void PlotFrameTest::noTwoChartsHaveOneTitle_data()
{
    QTest::addColumn<QVector<QString>>("texts");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("different names")
        << QVector<QString>{pump + "1/drive/speed", pump + "1/drive/setpoint"}
        << QStringList{"speed", "setpoint"};
    QTest::newRow("one name in two groups")
        << QVector<QString>{pump + "1/drive/speed", pump + "1/fan/speed", pump + "1/name"}
        << QStringList{"drive/speed", "fan/speed", "name"};
    QTest::newRow("one name in two instances")
        << QVector<QString>{pump + "1/drive/speed", pump + "2/drive/speed", pump + "2/fan/speed"}
        << QStringList{"1/drive/speed", "2/drive/speed", "fan/speed"};
    QTest::newRow("one name in two modules")
        << QVector<QString>{"processdata://A/Pump/1/speed", "processdata://B/Pump/1/speed"}
        << QStringList{"A/\u2026/speed", "B/\u2026/speed"};
    QTest::newRow("one name in two instances of one build")
        << QVector<QString>{pump + "1/drive/speed", pump + "2/drive/speed", pump + "2/level"}
        << QStringList{"1/\u2026/speed", "2/\u2026/speed", "level"};
    QTest::newRow("a short title that another chart has as its name")
        << QVector<QString>{pump + "1/speed", pump + "2/speed", pump + "2/1%2Fspeed"}
        << QStringList{"1/speed", "2/speed", "2/1/speed"};
    QTest::newRow("one selector twice")
        << QVector<QString>{pump + "1/speed", pump + "1/speed"}
        << QStringList{"PumpStation/Pump/1/speed #1", "PumpStation/Pump/1/speed #2"};
    QTest::newRow("one label twice")
        << QVector<QString>{"a=" + pump + "1/speed", "a=" + pump + "2/speed"}
        << QStringList{"a (1/speed)", "a (2/speed)"};
    QTest::newRow("an encoded name")
        << QVector<QString>{pump + "1/a%2Fb", pump + "2/a%2Fb"} << QStringList{"1/a/b", "2/a/b"};
    QTest::newRow("none") << QVector<QString>() << QStringList();
}

void PlotFrameTest::noTwoChartsHaveOneTitle()
{
    QFETCH(const QVector<QString>, texts);
    QFETCH(const QStringList, titles);
    QVector<ListLine> selectors;
    for (const QString &text : texts) {
        selectors.append(listLine(0, text));
    }
    QCOMPARE(plotTitles(watchTargets(selectors)), titles);
}

void PlotFrameTest::aFrameHoldsAllChartsThatFit()
{
    QCOMPARE(plotFrame(panels(2), {}, {40, 6, false}).size(), 6);
    QCOMPARE(titlesIn(plotFrame(panels(2), {}, {40, 6, false})), QStringList({"chart0", "chart1"}));
    QCOMPARE(plotFrame(panels(1), {}, {40, 100, false}).size(), 20);
    QCOMPARE(plotFrame(panels(30), {}, {40, 0, false}).size(), 300); // not a terminal
    QCOMPARE(plotFrame({}, {}, {40, 6, false}), QStringList());
}

void PlotFrameTest::chartsThatDoNotFitAreCounted_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("shown");
    QTest::newRow("one line too few") << 8 << 2;
    QTest::newRow("room for one") << 4 << 1;
    QTest::newRow("room for none") << 3 << 0;
    QTest::newRow("a single line") << 1 << 0;
}

void PlotFrameTest::chartsThatDoNotFitAreCounted()
{
    QFETCH(const int, lines);
    QFETCH(const int, shown);

    const QStringList frame = plotFrame(panels(3), {}, {60, lines, false});

    QVERIFY2(frame.size() <= lines, qPrintable(frame.join('\n')));
    QCOMPARE(titlesIn(frame).size(), shown + 1); // with the line below
    QCOMPARE(frame.last(),
             QString("%1 of 3 charts do not fit; make the window higher").arg(3 - shown));
}

void PlotFrameTest::theTimeAxisSaysHowLongAgoItWas()
{
    const qint64 millisecond = 1000000;
    QVector<qint64> times;
    for (int i = 0; i < 100; ++i) {
        times.append(i * 200 * millisecond);
    }
    QCOMPARE(timeAxis(times, 50, false),
             QString("           -6.4 s|         -3.2 s|            now|"));
    QCOMPARE(timeAxis(times, 50, true),
             QString("            -13 s\u2575         -6.4 s\u2575            now\u2575"));
    times.last() += 60 * 1000 * millisecond; // one look hung
    QCOMPARE(timeAxis(times, 50, false),
             QString("            -66 s|          -63 s|            now|"));
    QCOMPARE(timeAxis({5}, 50, false), QString(46, ' ') + "now|");
    QCOMPARE(timeAxis({0, 7300 * 1000 * millisecond}, 0, false).trimmed(), QString("now|"));
}

void PlotFrameTest::theTimeAxisTakesOneLine()
{
    const QStringList frame = plotFrame(panels(2), {1, 2}, {40, 7, false});
    QCOMPARE(frame.size(), 7);
    QVERIFY(frame.last().endsWith("now|"));
    const QStringList low = plotFrame(panels(2), {1, 2}, {40, 6, false});
    QCOMPARE(titlesIn(low).size(), 2); // one, and the line that counts the other
    QVERIFY(low.at(low.size() - 2).endsWith("now|"));
    QVERIFY(plotFrame(panels(2), {1, 2}, {40, 0, false}).last().endsWith("now|"));
}

QTEST_APPLESS_MAIN(PlotFrameTest)
#include "PlotFrameTest.moc"
