// SPDX-License-Identifier: MIT
// What people type on a running system: near misses, helps, options anywhere, values behind "=".
#include "SelectorSystemTest.h"

#include <QTest>

class SelectorTypingTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void mistypedWordsAreAskedFor_data();
    void mistypedWordsAreAskedFor();
    void aloneItListsTheCommands();
    void helpIsWhatTheOptionPrints();
    void optionsMayStandBeforeTheCommand();
    void writeShowsWhatWasThereAndReadsBack();
    void anEmptyTextIsNotNoValue();
};

void SelectorTypingTest::init()
{
    SystemTest::init();
    bringUp({leaf("speed", "float64", {{"unit", "1/min"}, {"selectorType", "AnalogSelector"}}),
             leaf("name", "string", {{"capacity", 16}}),
             leaf("idle", "string", {{"capacity", 16}})});
    VERIFY_COMMAND(publisher->publish("speed", 2));
    VERIFY_COMMAND(publisher->publish("name", ""));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
}

void SelectorTypingTest::mistypedWordsAreAskedFor_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");
    const QString hint("; did you mean \"%1\"?");
    const QString url("processdata://MODULE/Controller/1/");
    QTest::newRow("a command") << QStringList{"reda", "x"} << 2
                               << "Unknown command reda" + hint.arg("read");
    QTest::newRow("a command to be helped with")
        << QStringList{"help", "wrrite"} << 2 << "Unknown command wrrite" + hint.arg("write");
    QTest::newRow("an option") << QStringList{"read", "--fromat", "csv", "x"} << 2
                               << "Unknown option 'fromat'" + hint.arg("--format");
    QTest::newRow("an option without command")
        << QStringList{"--verbsoe"} << 2 << "Unknown option 'verbsoe'" + hint.arg("--verbose");
    QTest::newRow("a leaf") << QStringList{"read", "MODULE/Controller/1/sped"} << 1
                            << url + "sped: MODULE/Controller/1 has no such leaf"
            + hint.arg("speed");
    QTest::newRow("a leaf to be written")
        << QStringList{"write", "MODULE/Controller/1/Speed", "1"} << 1
        << url + "Speed: MODULE/Controller/1 has no such leaf" + hint.arg("speed");
    QTest::newRow("a property") << QStringList{"properties", "--property", "unti", url + "speed"}
                                << 1
                                << url + "speed: the leaf has no property \"unti\""
            + hint.arg("unit");
    QTest::newRow("a type") << QStringList{"modules", "--type", "AnalogSelektor"} << 0
                            << "no module offers the type \"AnalogSelektor\""
            + hint.arg("AnalogSelector");
    QTest::newRow("nothing comes near") << QStringList{"read", "MODULE/Controller/1/other"} << 1
                                        << url + "other: MODULE/Controller/1 has no such leaf\n";
}

void SelectorTypingTest::mistypedWordsAreAskedFor()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, exitCode);
    QFETCH(const QString, errors);
    ChildProcess client(SELECTOR, filledIn(arguments));
    VERIFY_RUN(client, exitCode);
    QVERIFY2(client.errors().startsWith("selector: " + filledIn(errors)), client.report());
}

void SelectorTypingTest::aloneItListsTheCommands()
{
    ChildProcess alone(SELECTOR, {});
    VERIFY_RUN(alone, 2);
    QCOMPARE(alone.output(), QByteArray());
    QVERIFY2(alone.errors().startsWith("selector: No command given.\n\nCommands:\n  modules "),
             alone.report());
    QVERIFY2(alone.errors().contains("\n  apply "), alone.report());
}

void SelectorTypingTest::helpIsWhatTheOptionPrints()
{
    const QByteArray help = outputOf(SELECTOR, {"help", "read"});
    QVERIFY2(help.startsWith("Usage: selector read "), help);
    QCOMPARE(help, outputOf(SELECTOR, {"read", "--help"}));
    const QByteArray overview = outputOf(SELECTOR, {"help"});
    QVERIFY2(overview.startsWith("Usage: selector ") && overview.contains("\n  read "), overview);
    QCOMPARE(overview, outputOf(SELECTOR, {"--help"}));
    QCOMPARE(overview, outputOf(SELECTOR, {"-v", "-h"}));
    QVERIFY(!outputOf(SELECTOR, {"help", "read", "write"}, 2).isEmpty());
}

void SelectorTypingTest::optionsMayStandBeforeTheCommand()
{
    const QString speed = module + "/Controller/1/speed";
    const QByteArray csv = outputOf(SELECTOR, {"read", "--no-legend", "--format", "csv", speed});
    QVERIFY2(csv.contains("/speed,2,"), csv);
    QCOMPARE(outputOf(SELECTOR, {"--format", "csv", "read", "--no-legend", speed}), csv);
    QCOMPARE(outputOf(SELECTOR, {"--no-legend", "--format=csv", "--timeout", "5s", "read", speed}),
             csv);
    QCOMPARE(outputOf(SELECTOR, {"-q", "read", speed}), QByteArray("2\n"));
    QVERIFY(outputOf(SELECTOR, {"-j", "read", speed}).startsWith('{'));
}

void SelectorTypingTest::writeShowsWhatWasThereAndReadsBack()
{
    const QString speed = selectorUrl(module, "speed");
    const QString name = selectorUrl(module, "name");
    QCOMPARE(outputOf(SELECTOR,
                      {"write", "--format", "csv", "fast=" + speed + "=2.5", name, "a=b",
                       selectorUrl(module, "idle"), ""}),
             "url,value,unit,result,note,before,label\n" + speed.toUtf8()
                 + ",2.5,1/min,written,,2,fast\n" + name.toUtf8() + ",a=b,,written,,,\n"
                 + selectorUrl(module, "idle").toUtf8() + ",,,written,,,\n");
    const QByteArray json
        = outputOf(SELECTOR, {"write", "-j", "--verify", speed, "NaN", name, "c"});
    QVERIFY2(json.contains("\"before\":2.5,") && json.contains("\"before\":\"a=b\","), json);
    const QByteArray table = outputOf(SELECTOR, {"write", "--verify", speed + "=3"});
    QVERIFY2(table.startsWith("URL ") && table.contains(" BEFORE  VALUE  UNIT   RESULT    NOTE\n")
                 && table.contains("     NaN      3  1/min  verified\n"),
             table);
}

void SelectorTypingTest::anEmptyTextIsNotNoValue()
{
    const QString name = selectorUrl(module, "name");
    const QString idle = selectorUrl(module, "idle");
    QCOMPARE(outputOf(SELECTOR, {"read", "-q", name}), QByteArray("\\c\n"));
    ChildProcess none(SELECTOR, {"read", "-q", idle});
    VERIFY_RUN(none, 1);
    QCOMPARE(none.output(), QByteArray("\n"));

    outputOf(SELECTOR, {"write", name, "full"});
    outputOf(SELECTOR, {"write", "--escapes", name, "\\c"});
    QCOMPARE(outputOf(SELECTOR, {"read", "-q", name}), QByteArray("\\c\n"));
    QCOMPARE(outputOf("bash", {"-c", "printf %b \"$(\"$0\" read -q \"$1\")\"", SELECTOR, name}),
             QByteArray());
}

QTEST_GUILESS_MAIN(SelectorTypingTest)
#include "SelectorTypingTest.moc"
