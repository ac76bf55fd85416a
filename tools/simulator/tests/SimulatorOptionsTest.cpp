// SPDX-License-Identifier: MIT
// The simulator's command line.
#include "SimulatorOptions.h"

#include <QtTest>

class SimulatorOptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allOptionsAreTaken();
    void defaultsHold();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void helpNamesEveryOption();
};

void SimulatorOptionsTest::allOptionsAreTaken()
{
    SimulatorOptions options;
    QString error;

    QVERIFY(parseSimulatorOptions({"simulator", "a.pdd", "--interval", "20", "--system-services",
                                   "--verbose", "b.pdd", "--scenario", "s.json"},
                                  options, error));

    QCOMPARE(options.fileNames, QStringList({"a.pdd", "b.pdd"}));
    QCOMPARE(options.interval, 20);
    QVERIFY(options.systemServices);
    QVERIFY(options.verbose);
    QCOMPARE(options.scenario, QString("s.json"));
    QVERIFY(options.control);
    QVERIFY(!options.help);
}

void SimulatorOptionsTest::defaultsHold()
{
    SimulatorOptions options;
    QString error;

    QVERIFY(parseSimulatorOptions({"simulator", "--system-services"}, options, error));

    QCOMPARE(options.interval, 100);
    QVERIFY(options.fileNames.isEmpty());
    QVERIFY(options.scenario.isEmpty());
    QVERIFY(!options.control);
    QVERIFY(parseSimulatorOptions({"simulator", "--control", "a.pdd"}, options, error));
    QVERIFY(options.control);
}

void SimulatorOptionsTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing to do") << QStringList{} << "No description file given.";
    QTest::newRow("an unknown option")
        << QStringList{"--fast", "a.pdd"} << "Unknown option 'fast'.";
    QTest::newRow("no time at all") << QStringList{"--interval", "0", "a.pdd"}
                                    << "--interval must be 1 to 60000 milliseconds, not \"0\"";
    QTest::newRow("a scenario without a name")
        << QStringList{"--scenario", "", "a.pdd"} << "--scenario takes the name of a file";
    QTest::newRow("a time with unit") << QStringList{"--interval", "5ms", "a.pdd"}
                                      << "--interval must be 1 to 60000 milliseconds, not \"5ms\"";
}

void SimulatorOptionsTest::wrongUsageIsNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    SimulatorOptions options;
    QString error;

    QVERIFY(!parseSimulatorOptions(QStringList{"simulator"} + arguments, options, error));

    QCOMPARE(error, expected);
}

void SimulatorOptionsTest::helpNamesEveryOption()
{
    for (const char *option : {"--interval", "--system-services", "--scenario", "--control",
                               "--verbose", "--help", "--version"}) {
        QVERIFY2(simulatorHelp().contains(option), option);
    }
}

QTEST_APPLESS_MAIN(SimulatorOptionsTest)
#include "SimulatorOptionsTest.moc"
