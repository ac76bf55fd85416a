// SPDX-License-Identifier: MIT
// What a command line means, and what is refused.
#include "CommandLine.h"

#include <QtTest>

namespace {

const QVector<Option> manyOptions{timeoutOption,
                                  urlFileOption,
                                  {"--type TYPE", ""},
                                  {"--property NAME", "", "", Option::Name},
                                  {"--interval MS", "", "", Option::Milliseconds},
                                  {"--count N", "", "", Option::Count},
                                  quietOption};

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOptionIsTaken();
    void defaultsHold();
    void negativeNumbersAreValues();
    void timesMayHaveUnits_data();
    void timesMayHaveUnits();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void optionsOfOtherCommandsAreUnknown();
};

void CommandLineTest::everyOptionIsTaken()
{
    CommandLine line;
    QString error;

    QVERIFY2(parseCommandLine({"a", "--format", "csv", "--timeout", "1.5", "-v", "b", "-f", "-",
                               "--type", "T", "--property", "p", "--property", "q", "--interval",
                               "50", "--count", "3"},
                              manyOptions, line, error),
             qPrintable(error));

    QCOMPARE(line.arguments, QStringList({"a", "b"}));
    QCOMPARE(int(line.format), int(Format::Csv));
    QCOMPARE(line.number("timeout"), 1500);
    QVERIFY(line.has("verbose"));
    QCOMPARE(line.text("file"), QString("-"));
    QVERIFY(line.has("type"));
    QCOMPARE(line.text("type"), QString("T"));
    QCOMPARE(line.texts("property"), QStringList({"p", "q"}));
    QCOMPARE(line.number("interval", 200), 50);
    QCOMPARE(line.number("count"), 3);
}

void CommandLineTest::defaultsHold()
{
    CommandLine line;
    QString error;

    QVERIFY(parseCommandLine({}, manyOptions, line, error));

    QCOMPARE(int(line.format), int(Format::Table));
    QCOMPARE(line.number("timeout"), 0);
    QCOMPARE(line.number("interval", 200), 200);
    QCOMPARE(line.number("count"), 0);
    for (const char *option : {"type", "verbose", "help", "no-legend", "quiet"}) {
        QVERIFY2(!line.has(option), option);
    }

    QVERIFY(parseCommandLine({"-q", "--no-legend"}, {quietOption}, line, error));
    QVERIFY(line.has("quiet") && line.has("no-legend"));
}

void CommandLineTest::negativeNumbersAreValues()
{
    CommandLine line;
    QString error;

    const QString mark(QChar(0xe000)); // what the parser tells numbers from options by
    QVERIFY2(parseCommandLine(
                 {"a", "-5", "b", "-.5", "c", "-Infinity", "d", mark + "x", "--format", "json"}, {},
                 line, error),
             qPrintable(error));

    QCOMPARE(line.arguments,
             QStringList({"a", "-5", "b", "-.5", "c", "-Infinity", "d", mark + "x"}));
    QCOMPARE(int(line.format), int(Format::Json));
}

void CommandLineTest::timesMayHaveUnits_data()
{
    QTest::addColumn<QString>("interval");
    QTest::addColumn<QString>("timeout");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("bare") << "2000"
                          << "2" << 2000;
    QTest::newRow("ms") << "250ms"
                        << "250ms" << 250;
    QTest::newRow("s") << "1.5s"
                       << "1.5s" << 1500;
    QTest::newRow("s with a part that has no end in binary digits") << "1.001s"
                                                                    << "1.001s" << 1001;
    QTest::newRow("min") << "2min"
                         << "2min" << 120000;
    QTest::newRow("h") << "1h"
                       << "1h" << 3600000;
}

void CommandLineTest::timesMayHaveUnits()
{
    QFETCH(const QString, interval);
    QFETCH(const QString, timeout);
    QFETCH(const int, milliseconds);
    CommandLine line;
    QString error;
    QVERIFY2(
        parseCommandLine({"--interval", interval, "--timeout", timeout}, manyOptions, line, error),
        qPrintable(error));
    QCOMPARE(line.number("interval"), milliseconds);
    QCOMPARE(line.number("timeout"), milliseconds);
}

void CommandLineTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("an unknown format")
        << QStringList{"--format", "xml"} << "--format must be table, json or csv, not \"xml\"";
    QTest::newRow("a format of another command")
        << QStringList{"--format", "pairs"} << "--format must be table, json or csv, not \"pairs\"";
    QTest::newRow("an empty format")
        << QStringList{"--format="} << "--format must be table, json or csv, not \"\"";
    QTest::newRow("two formats at once")
        << QStringList{"-j", "--format", "csv"} << "-j and --format csv exclude each other";
    QTest::newRow("no time at all")
        << QStringList{"--timeout", "0"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"0\"";
    QTest::newRow("negative time")
        << QStringList{"--timeout", "-1"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"-1\"";
    QTest::newRow("time without number")
        << QStringList{"--timeout", "soon"}
        << "--timeout must be a number of seconds, or one with its unit: ms, s, min, h or d, not "
           "\"soon\"";
    QTest::newRow("a unit that is not known")
        << QStringList{"--interval", "5m"}
        << "--interval must be a number of milliseconds, or one with its unit: ms, s, min, h or d, "
           "not \"5m\"";
    QTest::newRow("too long with its unit")
        << QStringList{"--timeout", "2d"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"2d\"";
    QTest::newRow("part of a millisecond")
        << QStringList{"--interval", "1.5"} << "--interval must be 1 to 3600000, not \"1.5\"";
    QTest::newRow("too long a time")
        << QStringList{"--timeout", "1e9"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"1e9\"";
    QTest::newRow("a count of zero")
        << QStringList{"--count", "0"} << "--count must be 1 to 2147483647, not \"0\"";
    QTest::newRow("an interval below one")
        << QStringList{"--interval", "-5"} << "--interval must be 1 to 3600000, not \"-5\"";
    QTest::newRow("time that is no number")
        << QStringList{"--timeout", "nan"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"nan\"";
    QTest::newRow("an endless time")
        << QStringList{"--timeout", "inf"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"inf\"";
    QTest::newRow("half a count") << QStringList{"--count", "1.5"}
                                  << "--count must be 1 to 2147483647, not \"1.5\"";
    QTest::newRow("a count beyond all numbers")
        << QStringList{"--count", "2147483648"}
        << "--count must be 1 to 2147483647, not \"2147483648\"";
    QTest::newRow("no file") << QStringList{"--file", ""} << "--file must not be empty";
    QTest::newRow("a property without name")
        << QStringList{"--property", "unit", "--property="} << "--property must not be empty";
    QTest::newRow("values only and a format")
        << QStringList{"-q", "--format", "csv"} << "--quiet and --format exclude each other";
    QTest::newRow("values only and JSON")
        << QStringList{"-j", "--quiet"} << "--quiet and --format exclude each other";
    QTest::newRow("an unknown option") << QStringList{"--fast"} << "Unknown option 'fast'.";
    QTest::newRow("a mistyped option")
        << QStringList{"--timoeut", "5"} << "Unknown option 'timoeut'; did you mean \"--timeout\"?";
    QTest::newRow("an unknown letter") << QStringList{"-x"} << "Unknown option 'x'.";
    QTest::newRow("an option without value")
        << QStringList{"--count"} << "Missing value after '--count'.";
}

void CommandLineTest::wrongUsageIsNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    CommandLine line;
    QString error;

    QVERIFY(!parseCommandLine(arguments, manyOptions, line, error));

    QCOMPARE(error, expected);
}

void CommandLineTest::optionsOfOtherCommandsAreUnknown()
{
    for (const char *option :
         {"--file=x", "--type=x", "--property=x", "--interval=1", "--count=1", "-q", "--clean"}) {
        CommandLine line;
        QString error;
        QVERIFY2(!parseCommandLine({option}, {}, line, error), option);
        QVERIFY2(error.startsWith("Unknown option"), qPrintable(error));
    }
}

QTEST_APPLESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
