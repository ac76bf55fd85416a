// SPDX-License-Identifier: MIT
// Reading commands take patterns, groups and sources; writing ones do not.
#include "Files.h"
#include "SelectorSystemTest.h"

#include <QTemporaryDir>
#include <QTest>

class SelectorPatternsTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void leavesStandInThePlaceOfPatterns_data();
    void leavesStandInThePlaceOfPatterns();
    void aPatternWithoutALeafIsAFailedRowWithAHint();
    void everyReadingCommandTakesThem_data();
    void everyReadingCommandTakesThem();
    void aWriteRefusesAPattern_data();
    void aWriteRefusesAPattern();
    void theTreeIsDrawnWithValues();
    void theTreeIsFlatForPrograms();
    void conditionsSpeakOfTheLeavesOfAPattern();
    void aLabelStaysWithOneLeaf();
    void anInstanceMayHoldASlash();

private:
    QByteArray run(QStringList arguments, int exitCode);

    QScopedPointer<QTemporaryDir> folder;
};

void SelectorPatternsTest::init()
{
    SystemTest::init();
    folder.reset(new QTemporaryDir);
    const QJsonObject drive{
        {"name", "drive"},
        {"elements",
         QJsonArray{leaf("speed", "int32", {{"unit", "1/min"}}), leaf("running", "bool")}}};
    bringUp({drive, leaf("alarm", "bool")});
    VERIFY_COMMAND(publisher->publish("drive/speed", 1450));
    VERIFY_COMMAND(publisher->publish("drive/running", true));
    VERIFY_COMMAND(publisher->publish("alarm", false));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
    QVERIFY(
        writeFile(folder->filePath("list"),
                  filledIn("# a pattern\nMODULE/Controller/1/drive/*\nMODULE/Controller/1/alarm\n"))
        && writeFile(folder->filePath("values"), filledIn("MODULE/Controller/1/* 3\n")));
}

void SelectorPatternsTest::cleanup()
{
    SelectorSystemTest::cleanup();
    folder.reset();
}

// What it prints without the beginning that all URLs have, errors last.
QByteArray SelectorPatternsTest::run(QStringList arguments, int exitCode)
{
    arguments.replaceInStrings("FOLDER", folder->path());
    return outputOf(SELECTOR, filledIn(arguments), exitCode)
        .replace("processdata://", "")
        .replace(module.toUtf8() + "/Controller/1/", "");
}

void SelectorPatternsTest::leavesStandInThePlaceOfPatterns_data()
{
    QTest::addColumn<QStringList>("selectors");
    QTest::addColumn<QByteArray>("values");
    const QString source = "MODULE/Controller/1";
    const auto row = [](const char *name, const QStringList &selectors, const char *values) {
        QTest::newRow(name) << selectors << QByteArray(values);
    };
    row("a pattern", {source + "/dr*/s*d"}, "1450\n");
    row("with the scheme", {"processdata://" + source + "/*/running"}, "true\n");
    row("everything below", {source + "/**"}, "1450\ntrue\nfalse\n");
    row("a group", {source + "/drive"}, "1450\ntrue\n");
    row("a group with the scheme", {"processdata://" + source + "/drive"}, "1450\ntrue\n");
    row("a source", {source}, "1450\ntrue\nfalse\n");
    row("an object", {"MODULE/Controller"}, "1450\ntrue\nfalse\n");
    row("a module", {"MODULE"}, "1450\ntrue\nfalse\n");
    row("everything", {"**"}, "1450\ntrue\nfalse\n");
    row("in their order", {source + "/alarm", source + "/drive", source + "/al*"},
        "false\n1450\ntrue\nfalse\n");
    row("deactivated", {source + "/*?deactivated", source + "/alarm"}, "\nfalse\n");
}

void SelectorPatternsTest::leavesStandInThePlaceOfPatterns()
{
    QFETCH(QStringList, selectors);
    QFETCH(QByteArray, values);

    QCOMPARE(run(QStringList{"read", "-q"} + selectors, 0), values);
}

void SelectorPatternsTest::aPatternWithoutALeafIsAFailedRowWithAHint()
{
    const QByteArray csv = run({"read", "--format", "csv", "--no-legend",
                                "MODULE/Controller/1/*/sped", "MODULE/Controller/1/alarm"},
                               1);
    const QByteArray hint = R"(no group or leaf is called "sped"; did you mean "speed"?)";
    QVERIFY2(csv.contains(QByteArray(hint).replace("\"", "\"\"")), csv);
    QVERIFY2(csv.contains("\nalarm,false,"), csv);
    QVERIFY2(csv.contains("selector: */sped: " + hint), csv);

    const QByteArray json = run({"read", "-j", "MODULE/Controller/*/nothing"}, 1);
    QVERIFY2(json.contains(R"("code":"noSuchLeaf")"), json);
    const QByteArray middle = run({"read", "-j", "MODULE/Controller/1/**/speed"}, 1);
    QVERIFY2(middle.contains(R"("code":"invalidUrl")") && middle.contains("last part"), middle);
}

void SelectorPatternsTest::everyReadingCommandTakesThem_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("count");
    const QStringList csv{"--format", "csv", "--no-legend"};
    QTest::newRow("read from a file") << QStringList{"read", "-f", "FOLDER/list"} + csv << 3;
    QTest::newRow("watch") << QStringList{"watch", "--count", "2", "MODULE/*/1/drive"} + csv << 2;
    QTest::newRow("watch a group")
        << QStringList{"watch", "--count", "2", "MODULE/Controller/1/drive"} + csv << 2;
    QTest::newRow("properties") << QStringList{"properties", "--property", "type",
                                               "MODULE/Controller/1"}
            + csv << 3;
    QTest::newRow("explain") << QStringList{"explain", "MODULE/Controller/1/d*"} + csv << 28;
    QTest::newRow("explain a group")
        << QStringList{"explain", "MODULE/Controller/1/drive"} + csv << 28;
    QTest::newRow("check") << QStringList{"check", "FOLDER/list"} + csv << 3;
    QTest::newRow("snapshot") << QStringList{"snapshot", "-o", "FOLDER/out", "MODULE/*/1/drive"}
            + csv << 1;
    QTest::newRow("browse sources") << QStringList{"browse", "MOD*/Contr*"} + csv << 0;
    QTest::newRow("browse leaves") << QStringList{"browse", "MODULE/*/1/dr*"} + csv << 2;
    QTest::newRow("browse instances") << QStringList{"browse", "MODULE*/*"} + csv << 1;
}

void SelectorPatternsTest::everyReadingCommandTakesThem()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, count);

    const QByteArray output = run(arguments, count == 0 ? 1 : 0);

    QVERIFY2(count == 0 ? output.contains("no module matches") : output.count('\n') == count,
             output);
}

void SelectorPatternsTest::aWriteRefusesAPattern_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("write") << QStringList{"write", "MODULE/Controller/1/*", "1"};
    QTest::newRow("apply") << QStringList{"apply", "FOLDER/values"};
}

void SelectorPatternsTest::aWriteRefusesAPattern()
{
    QFETCH(QStringList, arguments);

    const QByteArray output = run(arguments, 2);

    QVERIFY2(output.contains("a pattern may match more than you mean"), output);
    QCOMPARE(run({"read", "-q", "MODULE"}, 0), QByteArray("1450\ntrue\nfalse\n"));
    const QByteArray checked = run({"check", "-j", "FOLDER/values"}, 1);
    QVERIFY2(checked.contains("a pattern may match more than you mean"), checked);
}

void SelectorPatternsTest::theTreeIsDrawnWithValues()
{
    const QByteArray tree = run({"browse", "-r", "--no-legend", "--values", "MODULE"}, 0);
    QStringList lines;
    const QStringList printed = QString::fromUtf8(tree).split('\n');
    for (const QString &line : printed) {
        const int indent = line.size() - line.trimmed().size();
        lines.append(QString(indent, ' ') + line.simplified());
    }
    QCOMPARE(lines,
             filledIn({"MODULE", "  Controller", "    1", "      drive",
                       "        speed int32 1/min writable 1450 NoError",
                       "        running bool - writable true NoError",
                       "      alarm bool - writable false NoError", ""}));
    QCOMPARE(run({"browse", "-r", "-q"}, 0), QByteArray("drive/speed\ndrive/running\nalarm\n"));
}

void SelectorPatternsTest::theTreeIsFlatForPrograms()
{
    const QByteArray json = run({"browse", "-r", "-j", "--values", "MODULE/Controller/1/drive"}, 0);
    QVERIFY2(json.contains(R"("path":"drive/speed")") && json.contains(R"("value":1450)"), json);
    QVERIFY2(json.contains(R"("errorType":"NoError")") && !json.contains("alarm"), json);
    const QByteArray failed = run({"browse", "-r", "-j", "NotHere"}, 1);
    QVERIFY2(failed.contains(R"("place":"NotHere")"), failed);
}

void SelectorPatternsTest::conditionsSpeakOfTheLeavesOfAPattern()
{
    run({"watch", "--timeout", "20", "--until", "speed>1000 && running",
         "MODULE/Controller/1/drive"},
        0);
    run({"watch", "--timeout", "20", "--until", "speed>1000", "MODULE/*/1/dr*"}, 0);
    const QByteArray wrong
        = run({"watch", "--until", "spede>1000", "MODULE/Controller/1/drive"}, 2);
    QVERIFY2(wrong.contains("spede"), wrong);
}

void SelectorPatternsTest::aLabelStaysWithOneLeaf()
{
    const QByteArray one = run({"read", "-j", "x=MODULE/Controller/1/*/speed"}, 0);
    QVERIFY2(one.contains(R"("label":"x")"), one);
    const QByteArray two = run({"read", "-j", "x=MODULE/Controller/1/drive"}, 0);
    QVERIFY2(!two.contains("label"), two);
}

void SelectorPatternsTest::anInstanceMayHoldASlash()
{
    VERIFY_COMMAND(publisher->create(module, "Level", QString::fromUtf8("Nord 1/ä"),
                                     description({leaf("level", "int32")})));
    VERIFY_COMMAND(publisher->publish("level", 7));
    const QString place = "MODULE/Level/Nord%201%2F%C3%A4";

    QVERIFY(run({"browse", "-q", place}, 0).endsWith("/Level/Nord%201%2F%C3%A4/level\n"));
    QCOMPARE(run({"read", "-q", place}, 0), QByteArray("7\n"));
    QCOMPARE(run({"read", "-q", "MODULE/Level/Nord*%2F*/l*"}, 0), QByteArray("7\n"));
}

QTEST_GUILESS_MAIN(SelectorPatternsTest)
#include "SelectorPatternsTest.moc"
