// SPDX-License-Identifier: MIT
// Names, ages, colour and what is shortened on a screen.
#include "ScreenTable.h"
#include "AgeText.h"
#include "ScreenNames.h"

#include <QtTest>

namespace {

const qint64 second = 1000000000;
const qint64 noon = 1767268800 * second;

Style screenOf(int width, bool colour = false)
{
    Style style;
    style.width = width;
    style.colour = colour;
    style.now = noon;
    return style;
}

ScreenRow row(const QVector<QString> &texts, Entry::State state = Entry::Good)
{
    ScreenRow result;
    result.state = state;
    for (const QString &text : texts) {
        result.cells.append(text);
    }
    return result;
}

QStringList linesOf(const ScreenTable &table, int rows)
{
    QStringList lines;
    for (int i = 0; i < rows; ++i) {
        lines += table.lines(i);
    }
    return lines;
}

} // namespace

class ScreenTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatNamesHaveInCommonIsTakenOff_data();
    void whatNamesHaveInCommonIsTakenOff();
    void agesAreInWholeUnits_data();
    void agesAreInWholeUnits();
    void stateIsColoured();
    void aChangedCellStandsOut();
    void namesAreShortenedOnlyWhileTheyDiffer();
    void aLongValueIsWholeAndMakesNoWideColumn();
    void aScreenThatCutsGetsNoWiderLines();
    void columnsWithoutContentAreLeftOut();
    void columnsDoNotBecomeNarrower();
    void namesFromOutsideDoNotSteerTheTerminal();
};

void ScreenTableTest::whatNamesHaveInCommonIsTakenOff_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("common");
    QTest::addColumn<QStringList>("rests");
    QTest::newRow("none") << QStringList() << "" << QStringList();
    QTest::newRow("one") << QStringList{"p://A/B/1/x"} << "p://A/B/1/" << QStringList{"x"};
    QTest::newRow("one twice") << QStringList{"p://A/B/1/x", "p://A/B/1/x"} << "p://A/B/1/"
                               << QStringList{"x", "x"};
    QTest::newRow("two groups") << QStringList{"p://A/B/1/g/x", "p://A/B/1/h/x"} << "p://A/B/1/"
                                << QStringList{"g/x", "h/x"};
    QTest::newRow("a leaf called like a group")
        << QStringList{"p://A/B/1/g/x", "p://A/B/1/g"} << "p://A/B/1/" << QStringList{"g/x", "g"};
    QTest::newRow("two modules that begin alike") << QStringList{"p://Aa/B/1/x", "p://Ab/B/1/x"}
                                                  << "p://" << QStringList{"Aa/B/1/x", "Ab/B/1/x"};
    QTest::newRow("two schemes") << QStringList{"p://A/B/1/x", "q://A/B/1/x"} << ""
                                 << QStringList{"p://A/B/1/x", "q://A/B/1/x"};
    QTest::newRow("an instance without a name")
        << QStringList{"p://A/B//x", "p://A/B//y"} << "p://A/B//" << QStringList{"x", "y"};
    QTest::newRow("deactivated") << QStringList{"p://A/B/1/x?deactivated/no", "p://A/B/1/y"}
                                 << "p://A/B/1/" << QStringList{"x?deactivated/no", "y"};
    QTest::newRow("what is not a URL, and nothing")
        << QStringList{"p://A/B/1/x", "nonsense", ""} << "p://A/B/1/"
        << QStringList{"x", "nonsense", ""};
    QTest::newRow("places") << QStringList{"A/B/1", "A/C/1"} << "A/" << QStringList{"B/1", "C/1"};
    QTest::newRow("a place without instance")
        << QStringList{"A/B/1", "A/B/"} << "A/" << QStringList{"B/1", "B/"};
    QTest::newRow("modules") << QStringList{"A", "B"} << "" << QStringList{"A", "B"};
    QTest::newRow("encoded names")
        << QStringList{"p://A%20b/B/1/%C3%A4%2Fx"} << "p://A b/B/1/" << QStringList{"ä/x"};
    QTest::newRow("an encoding of what is not text")
        << QStringList{"p://A/B/1/%FF"} << "p://A/B/1/" << QStringList{"%FF"};
}

void ScreenTableTest::whatNamesHaveInCommonIsTakenOff()
{
    QFETCH(const QStringList, names);
    QFETCH(const QString, common);
    QFETCH(const QStringList, rests);

    const ScreenNames result = ScreenNames::of(names);

    QCOMPARE(result.common, common);
    QCOMPARE(result.rests, rests);
}

void ScreenTableTest::agesAreInWholeUnits_data()
{
    QTest::addColumn<qint64>("age");
    QTest::addColumn<QString>("text");
    QTest::newRow("now") << qint64(0) << "< 1 s";
    QTest::newRow("almost a second") << second - 1 << "< 1 s";
    QTest::newRow("a second") << second << "1 s";
    QTest::newRow("almost two") << 2 * second - 1 << "1 s";
    QTest::newRow("almost a minute") << 60 * second - 1 << "59 s";
    QTest::newRow("a minute") << 60 * second << "1 min";
    QTest::newRow("almost an hour") << 3600 * second - 1 << "59 min";
    QTest::newRow("an hour") << 3600 * second << "1 h";
    QTest::newRow("a day") << 86400 * second << "1 d";
    QTest::newRow("years") << 1000 * 86400 * second << "1000 d";
    QTest::newRow("almost in a second") << 1 - second << "< 1 s";
    QTest::newRow("in a second") << -second << "in 1 s";
    QTest::newRow("in almost two") << 1 - 2 * second << "in 1 s";
    QTest::newRow("in three days") << -3 * 86400 * second << "in 3 d";
}

void ScreenTableTest::agesAreInWholeUnits()
{
    QFETCH(const qint64, age);
    QFETCH(const QString, text);
    QCOMPARE(ageText(noon - age, noon), text);
    QCOMPARE(ageText(noon + 1 - age, noon + 1), text);
    QCOMPARE(ageText(0, noon), QString());
    QCOMPARE(ageInSeconds(noon - age, noon), double(age) / double(second));
    const qint64 least = std::numeric_limits<qint64>::min();
    QVERIFY(!ageText(least, std::numeric_limits<qint64>::max()).startsWith("in"));
    QVERIFY(ageInSeconds(least, noon) > 1e10);
}

void ScreenTableTest::stateIsColoured()
{
    const auto columns = columnsOf("url note");
    const ScreenTable table(
        columns,
        {row({"a", ""}), row({"b", "gone"}, Entry::Failed), row({"c", "old"}, Entry::Doubtful)},
        screenOf(80, true));
    QCOMPARE(table.header(), QStringList("\x1b[1mURL  NOTE\x1b[0m"));
    QCOMPARE(table.lines(0), QStringList("a"));
    QCOMPARE(table.lines(1), QStringList("\x1b[31mb    gone\x1b[0m"));
    QCOMPARE(table.lines(2), QStringList("\x1b[33mc    old\x1b[0m"));
}

void ScreenTableTest::aChangedCellStandsOut()
{
    ScreenRow changed = row({"a", "5", "V"});
    changed.changed = {false, true, false};
    const ScreenTable table(columnsOf("url value> unit"), {changed}, screenOf(80));
    QCOMPARE(table.lines(0), QStringList("a        \x1b[7;1m5\x1b[27;22m  V"));
}

void ScreenTableTest::namesAreShortenedOnlyWhileTheyDiffer()
{
    const QString tail = "/the/same/end/of/all/names";
    const QVector<ScreenRow> rows{row({"p://A/B/1/one" + tail, "1"}),
                                  row({"p://A/B/1/two" + tail, "2"})};
    const ScreenTable narrow(columnsOf("url value>"), rows, screenOf(40));
    QCOMPARE(narrow.header(), (QStringList{"p://A/B/1/…", "URL                            VALUE"}));
    QCOMPARE(linesOf(narrow, 2),
             (QStringList{"one/the/same/end/of/all/names      1",
                          "two/the/same/end/of/all/names      2"}));

    const ScreenTable narrower(columnsOf("url value>"), rows, screenOf(30));
    QCOMPARE(linesOf(narrower, 2),
             (QStringList{"…e/the/same/end/of/all/names", "    1", "…o/the/same/end/of/all/names",
                          "    2"}));
}

void ScreenTableTest::aLongValueIsWholeAndMakesNoWideColumn()
{
    const QString text(100, 'x');
    const ScreenTable table(columnsOf("url value> unit"),
                            {row({"p://A/B/1/a", "1", "V"}), row({"p://A/B/1/b", text, "m"})},
                            screenOf(40));
    QCOMPARE(linesOf(table, 2),
             (QStringList{"a                1  V", "b                   m", "    " + text}));
}

void ScreenTableTest::aScreenThatCutsGetsNoWiderLines()
{
    Style style = screenOf(20);
    style.breaks = true;
    const QString word = "0123456789abcdef"; // as wide as a line with its indent
    const ScreenTable table(columnsOf("url value> unit note"),
                            {row({"p://A/B/1/b", word + word + "x", "m", "why " + word + "y z"})},
                            style);
    QCOMPARE(linesOf(table, 1),
             (QStringList{"b                  m", "    " + word, "    " + word, "    x", "    why",
                          "    " + word, "    y z"}));
}

void ScreenTableTest::columnsWithoutContentAreLeftOut()
{
    const auto columns = columnsOf("url value> unit error note");
    const ScreenTable table(columns, {row({"a", "1", "", "NoError", ""})}, screenOf(80));
    QCOMPARE(table.header(), QStringList("URL  VALUE  ERROR"));
    QCOMPARE(ScreenTable(columns, {}, screenOf(80)).header(),
             QStringList("URL  VALUE  UNIT  ERROR  NOTE"));
    QCOMPARE(table.header(false), QStringList());
}

void ScreenTableTest::columnsDoNotBecomeNarrower()
{
    const auto columns = columnsOf("url value> unit");
    const ScreenTable wide(columns, {row({"a", "1234567", "V"})}, screenOf(80));
    const ScreenTable narrow(columns, {row({"a", "1", ""})}, screenOf(80), wide.columnWidths());
    QCOMPARE(narrow.header(), QStringList("URL    VALUE  UNIT"));
    QCOMPARE(narrow.lines(0), QStringList("a          1"));
}

void ScreenTableTest::namesFromOutsideDoNotSteerTheTerminal()
{
    const ScreenTable table(columnsOf("url note"), {row({"p://A%1b/B/1/a%0Ab", "x\x1b[2J"})},
                            screenOf(80));
    QCOMPARE(table.header().first(), QString("p://A\\x1b/B/1/…"));
    QCOMPARE(table.lines(0), QStringList("a\\nb  x\\x1b[2J"));
}

QTEST_APPLESS_MAIN(ScreenTableTest)
#include "ScreenTableTest.moc"
