// SPDX-License-Identifier: MIT
// The exact characters of charts.
#include "PlotPanel.h"

#include <QtTest>

#include <cmath>

namespace {

PlotPanel panelOf(const QVector<double> &samples)
{
    PlotPanel panel("speed");
    for (const double sample : samples) {
        panel.add(sample, QString::number(sample) + " 1/min");
    }
    return panel;
}

} // namespace

class PlotPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainCharactersDrawOneSampleAColumn();
    void dotsDrawTwoSamplesACell();
    void onlyTheLatestSamplesAreShown();
    void aTimeWithoutANumberIsAGap();
    void aConstantRunsThroughTheMiddle();
    void aSwitchHasItsOwnRange();
    void aTitleThatDoesNotFitSaysSo();
    void nothingToShowIsStillAFrame();
    void extremesAndControlCharactersDoNoHarm();
};

void PlotPanelTest::plainCharactersDrawOneSampleAColumn()
{
    QCOMPARE(panelOf({0, 1, 2, 4, 4, 1}).render(20, 6, false),
             (QStringList{"speed  1 1/min", "         4 |     **", "           |     * *",
                          "           |    *  *", "           |   *   *", "         0 |  *"}));
}

void PlotPanelTest::dotsDrawTwoSamplesACell()
{
    // Four cells: eight samples, eight lines of dots.
    QCOMPARE(panelOf({0, 1, 2, 3, 4, 5, 6, 7}).render(16, 3, true),
             (QStringList{"speed  7 1/min", QString("         7 \u2502  \u2860\u280a"),
                          QString("         0 \u2502\u2860\u280a")}));
}

void PlotPanelTest::onlyTheLatestSamplesAreShown()
{
    const QStringList lines = panelOf({100, 100, 1, 2}).render(14, 3, false);
    QCOMPARE(lines, (QStringList{"speed  2 1/min", "         2 | *", "         1 |*"}));
}

void PlotPanelTest::aTimeWithoutANumberIsAGap()
{
    const QStringList lines = panelOf({1, std::nan(""), 2}).render(15, 4, false);
    QCOMPARE(lines.mid(1), (QStringList{"         2 |  *", "           |", "         1 |*"}));
}

void PlotPanelTest::aConstantRunsThroughTheMiddle()
{
    const QStringList lines = panelOf({50, 50}).render(14, 4, false);
    QCOMPARE(lines.mid(1), (QStringList{"        55 |", "           |**", "        45 |"}));
}

void PlotPanelTest::aSwitchHasItsOwnRange()
{
    PlotPanel panel = panelOf({1, 1, 0, 0, 1});
    panel.setSwitch(true);
    QCOMPARE(panel.render(17, 4, false).mid(1),
             (QStringList{"      true |**  *", "           |  * *", "     false |  **"}));
    PlotPanel constant = panelOf({1, 1});
    constant.setSwitch(true);
    QCOMPARE(constant.render(14, 3, false).mid(1), (QStringList{"      true |**", "     false |"}));
}

void PlotPanelTest::aTitleThatDoesNotFitSaysSo()
{
    QCOMPARE(panelOf({1450}).render(14, 3, false).first(), QString("speed  1450 1…"));
    QCOMPARE(panelOf({1450}).render(17, 3, false).first(), QString("speed  1450 1/min"));
}

void PlotPanelTest::nothingToShowIsStillAFrame()
{
    QCOMPARE(PlotPanel("speed").render(16, 3, false),
             (QStringList{"speed", "         1 |", "         0 |"}));
    QCOMPARE(PlotPanel("speed").render(0, 0, true).size(), 3);
}

void PlotPanelTest::extremesAndControlCharactersDoNoHarm()
{
    const QStringList lines = panelOf({-1.7e308, 1.7e308, qInf()}).render(15, 3, false);
    QCOMPARE(lines.mid(1), (QStringList{"  1.7e+308 | *", " -1.7e+308 |*"}));

    PlotPanel evil("a\x1b[2J");
    evil.add(1, "x\ny");
    QCOMPARE(evil.render(40, 3, false).first(), QString("a\\x1b[2J  x\\ny"));

    PlotPanel longRun("many");
    for (int i = 0; i < 10000; ++i) {
        longRun.add(i, QString());
    }
    QVERIFY(longRun.render(100000, 3, true).at(1).startsWith("      9999 "));
}

QTEST_APPLESS_MAIN(PlotPanelTest)
#include "PlotPanelTest.moc"
