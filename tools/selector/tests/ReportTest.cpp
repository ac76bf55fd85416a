// SPDX-License-Identifier: MIT
// The exact text of each format.
#include "Report.h"

#include <QtTest>

namespace {

Report twoRows()
{
    Entry good;
    good.json = {{"url", "a"}, {"value", 1}};
    good.rows.append({QString("a"), Cell("1.5", "1.50001"), QString("bar"), QString()});
    Entry bad;
    bad.state = Entry::Failed;
    bad.json = {{"url", "long"}, {"value", QJsonValue()}};
    bad.rows.append({QString("long"), QString(), QString(), QString("no, \"really\"\nnot")});
    return {"selector.test/1",
            {{"url", false}, {"value", true}, {"unit", false}, {"note", false}},
            {good, bad}};
}

} // namespace

class ReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTableIsAlignedAndHasNoEmptyCellInside();
    void aTableIsColouredByState();
    void csvIsQuotedAndExact();
    void jsonIsOneLineInAPipe();
    void jsonIsIndentedForPeople();
    void anEmptyReportStillHasItsFrame();
    void withoutLegendNoHeaderIsLeft();
    void quietLeavesOneValueOfEachRow();
    void quietNamesLeaveOutFailuresAndFurtherRows();
    void controlCharactersDoNotReachTheTerminal();
    void onlyFailuresAndDoubtSpoilAReport();
    void theGravestFailureDecidesTheExitCode();
};

void ReportTest::aTableIsAlignedAndHasNoEmptyCellInside()
{
    QCOMPARE(render(twoRows(), {Format::Table, false, false}),
             QString("URL   VALUE  UNIT  NOTE\n"
                     "a       1.5  bar\n"
                     "long      -  -     no, \"really\"\\nnot\n"));
}

void ReportTest::aTableIsColouredByState()
{
    QCOMPARE(render(twoRows(), {Format::Table, true, false}),
             QString("\x1b[1mURL   VALUE  UNIT  NOTE\x1b[0m\n"
                     "a       1.5  bar\n"
                     "\x1b[31mlong      -  -     no, \"really\"\\nnot\x1b[0m\n"));
}

void ReportTest::csvIsQuotedAndExact()
{
    QCOMPARE(render(twoRows(), {Format::Csv, true, true}),
             QString("url,value,unit,note\n"
                     "a,1.50001,bar,\n"
                     "long,,,\"no, \"\"really\"\"\nnot\"\n"));
}

void ReportTest::jsonIsOneLineInAPipe()
{
    QCOMPARE(render(twoRows(), {Format::Json, true, false}),
             QString(R"({"results":[{"url":"a","value":1},{"url":"long","value":null}],)"
                     R"("schema":"selector.test/1"})"
                     "\n"));
}

void ReportTest::jsonIsIndentedForPeople()
{
    QVERIFY(render(twoRows(), {Format::Json, false, true}).startsWith("{\n    \"results\": [\n"));
}

void ReportTest::anEmptyReportStillHasItsFrame()
{
    const Report report{"selector.test/1", {{"url", false}, {"note", false}}, {}};
    QCOMPARE(render(report, {Format::Table, false, false}), QString("URL  NOTE\n"));
    QCOMPARE(render(report, {Format::Csv, false, false}), QString("url,note\n"));
    QCOMPARE(render(report, {Format::Json, false, false}),
             QString("{\"results\":[],\"schema\":\"selector.test/1\"}\n"));
    QCOMPARE(report.exitCode(), ExitAllGood);
}

void ReportTest::withoutLegendNoHeaderIsLeft()
{
    Style style{Format::Table, true, false};
    style.legend = false;
    QVERIFY(render(twoRows(), style).startsWith("a       1.5  bar\n"));
    style.format = Format::Csv;
    QVERIFY(render(twoRows(), style).startsWith("a,1.50001,bar,\n"));
}

void ReportTest::quietLeavesOneValueOfEachRow()
{
    Style style;
    style.quiet = true;
    Report report = twoRows();
    report.quietColumn = 1;
    report.entries[0].rows.append(
        {QString("a"), QString("two\nlines, C:\\n"), QString(), QString()});
    Cell empty{QString()};
    empty.holdsValue = true;
    report.entries[0].rows.append({QString("a"), empty, QString(), QString()});
    QCOMPARE(render(report, style), QString("1.50001\ntwo\\nlines, C:\\\\n\n\\c\n\n"));
}

void ReportTest::quietNamesLeaveOutFailuresAndFurtherRows()
{
    Style style;
    style.quiet = true;
    Report report = twoRows();
    report.quietColumn = 0;
    report.quietNames = true;
    report.entries[0].rows.append(report.entries.at(0).rows.at(0));
    QCOMPARE(render(report, style), QString("a\n"));
}

void ReportTest::controlCharactersDoNotReachTheTerminal()
{
    QCOMPARE(printable(QString("a\x1b[2J\t\r\n\x7fü")), QString("a\\x1b[2J\\t\\x0d\\n\\x7fü"));
}

void ReportTest::onlyFailuresAndDoubtSpoilAReport()
{
    for (const auto state : {Entry::Good, Entry::Skipped, Entry::Doubtful, Entry::Failed}) {
        Entry entry;
        entry.state = state;
        const Report report{QString(), {}, {Entry(), entry}};
        const bool good = state == Entry::Good || state == Entry::Skipped;
        QCOMPARE(report.exitCode(), good ? ExitAllGood : ExitSomeFailed);
    }
}

void ReportTest::theGravestFailureDecidesTheExitCode()
{
    Report report;
    for (const ExitCode failure : {ExitSomeFailed, ExitDenied, ExitTimeLimit}) {
        Entry entry;
        entry.state = Entry::Failed;
        entry.failure = failure;
        report.entries.prepend(entry);
        QCOMPARE(report.exitCode(), failure);
    }
}

QTEST_APPLESS_MAIN(ReportTest)
#include "ReportTest.moc"
