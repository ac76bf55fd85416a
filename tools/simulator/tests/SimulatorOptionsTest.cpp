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
    void stepsOfAnotherSimulatorAreTaken();
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

void SimulatorOptionsTest::stepsOfAnotherSimulatorAreTaken()
{
    SimulatorOptions options;
    QString error;

    QVERIFY(parseSimulatorOptions(
        {"simulator", "--run", "vanish A,kill", "--run", "step x", "--timeout", "0.5"}, options,
        error));

    QCOMPARE(options.run, QStringList({"vanish A,kill", "step x"}));
    QCOMPARE(options.timeout, 500);
    QVERIFY(parseSimulatorOptions({"simulator", "a.pdd"}, options, error));
    QVERIFY(options.run.isEmpty());
    QCOMPARE(options.timeout, 0);
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
    QTest::newRow("a run that publishes")
        << QStringList{"--run", "kill", "a.pdd"}
        << "Unexpected \"a.pdd\": --run talks to a simulator that runs already; quote a step with "
           "blanks as one argument";
    QTest::newRow("a run with system services")
        << QStringList{"--run", "kill", "--system-services"}
        << "--system-services does not go with --run, which talks to a simulator that runs already";
    QTest::newRow("a limit without a run")
        << QStringList{"--timeout", "1", "a.pdd"} << "--timeout goes with --run";
    QTest::newRow("a limit of nothing")
        << QStringList{"--run", "kill", "--timeout", "0"}
        << "--timeout must be above 0 and at most 86400 seconds, not \"0\"";
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
                               "--run", "--timeout", "--verbose", "--help", "--version"}) {
        QVERIFY2(simulatorHelp().contains(option), option);
    }
}

QTEST_APPLESS_MAIN(SimulatorOptionsTest)
#include "SimulatorOptionsTest.moc"
