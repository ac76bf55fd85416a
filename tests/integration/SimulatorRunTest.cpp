// SPDX-License-Identifier: MIT
// process-data-simulator --run: steps of a command line, performed by a simulator that runs already.
#include "BusTestMain.h"
#include "SelectorHandlerProcessValue.h"
#include "SimulatorProcess.h"
#include "SystemTest.h"

#include <QTest>

class SimulatorRunTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void stepsAreDoneInTheirOrderEachWithALine();
    void aStepOfTheScenarioIsRunByItsName();
    void aSimulatorThatEndsItselfHasDoneItsStep_data();
    void aSimulatorThatEndsItselfHasDoneItsStep();
    void nothingIsRunWhenAStepNamesWhatIsNotThere_data();
    void nothingIsRunWhenAStepNamesWhatIsNotThere();
    void nothingIsRunWhenAStepIsWrong();
    void aStepThatFailsEndsTheRun();
    void withoutASimulatorThatTakesStepsNothingIsReachable();
    void withoutABusNothingIsReachable();
    void aSimulatorThatDoesNotAnswerCostsTheTimeLimit();

private:
    /// What is printed for a list of steps in which M is the module and S its source.
    QByteArray run(const QString &steps, int exitCode, const QStringList &options = {});
    QByteArray named(const char *text) const;

    QScopedPointer<SimulatorProcess> simulator;
    QByteArray errors;
};

namespace {

const QJsonObject pump = description(
    {leaf("level", "int32", {{"simulate", QJsonObject{{"kind", "constant"}, {"value", 5}}}})});

const int endedBySignal = -1;

} // namespace

void SimulatorRunTest::init()
{
    SystemTest::init();
    simulator.reset(new SimulatorProcess(bus->address()));
    VERIFY_COMMAND(simulator->publish(module, pump));
}

void SimulatorRunTest::cleanup()
{
    simulator.reset();
    removeLeftBuffers(module);
    SystemTest::cleanup();
}

QByteArray SimulatorRunTest::named(const char *text) const
{
    return QByteArray(text).replace('@', module.toUtf8());
}

QByteArray SimulatorRunTest::run(const QString &steps, int exitCode, const QStringList &options)
{
    ChildProcess runner(SIMULATOR,
                        QStringList{"--run", QString(steps).replace('@', module)} + options);
    if (!runner.run() || runner.exitCode() != exitCode) {
        return "it ended otherwise: " + runner.report();
    }
    errors = runner.errors();
    return runner.output();
}

void SimulatorRunTest::stepsAreDoneInTheirOrderEachWithALine()
{
    VERIFY_COMMAND(simulator->start({"--control"}));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);
    QSignalSpy changes(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
    QCOMPARE(handler.getValue(0).getValue().userType(), int(QMetaType::Int));

    QCOMPARE(run("vanish @, return @,retype @/Controller/1 leaf=level type=float64", 0),
             named("vanish @: done\n"
                   "return @: done\n"
                   "retype @/Controller/1 leaf=level type=float64: done\n"));

    QCOMPARE(errors, QByteArray());
    QTRY_COMPARE_WITH_TIMEOUT(handler.getValue(0).getValue().userType(), int(QMetaType::Double),
                              20000);
    QVERIFY2(simulator->waitForError(named("step vanish @: done")), simulator->process().report());
}

void SimulatorRunTest::aStepOfTheScenarioIsRunByItsName()
{
    VERIFY_COMMAND(simulator->startScenario(QString(R"({"format":"process-data-scenario/1","steps":[
            {"name":"power off","do":"vanish","module":"%1"}]})")
                                                .arg(module)));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);

    QCOMPARE(run("step \"power off\"", 0), QByteArray("step \"power off\": done\n"));

    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(run("return @,step \"power on\"", 1), QByteArray());
    QCOMPARE(
        errors,
        QByteArray("process-data-simulator: step 2, \"step \"power on\"\": The scenario has no "
                   "step \"power on\"\n"));
}

void SimulatorRunTest::aSimulatorThatEndsItselfHasDoneItsStep_data()
{
    QTest::addColumn<QString>("step");

    QTest::newRow("killed") << "kill";
    QTest::newRow("killed in a write") << "kill-in-write @/Controller/1 leaf=level";
}

void SimulatorRunTest::aSimulatorThatEndsItselfHasDoneItsStep()
{
    QFETCH(QString, step);
    VERIFY_COMMAND(simulator->start({"--control"}));

    QCOMPARE(run(step, 0), named(step.toUtf8()) + ": done, the simulator has ended\n");

    QVERIFY(simulator->process().waitForEnd());
    QCOMPARE(simulator->process().exitCode(), endedBySignal);
}

void SimulatorRunTest::nothingIsRunWhenAStepNamesWhatIsNotThere_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("a module") << "vanish Nothing"
                              << QByteArray("key \"module\": no file publishes \"Nothing\"");
    QTest::newRow("a source") << "reply-never a/b/c"
                              << QByteArray("key \"source\": no file publishes \"a/b/c\"");
    QTest::newRow("a leaf") << "retype @/Controller/1 leaf=none type=bool"
                            << QByteArray("key \"leaf\": @/Controller/1 has no leaf \"none\"");
}

void SimulatorRunTest::nothingIsRunWhenAStepNamesWhatIsNotThere()
{
    QFETCH(QString, step);
    QFETCH(QByteArray, expected);
    VERIFY_COMMAND(simulator->start({"--control"}));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);

    QCOMPARE(run("vanish @," + step, 1), QByteArray());

    const QByteArray begin
        = "process-data-simulator: step 2, \"" + named(step.toUtf8()) + "\": " + named(expected);
    QVERIFY2(errors.startsWith(begin), errors);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
}

void SimulatorRunTest::nothingIsRunWhenAStepIsWrong()
{
    VERIFY_COMMAND(simulator->start({"--control"}));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);

    QCOMPARE(run("vanish @,vanish", 2), QByteArray());

    QCOMPARE(errors,
             QByteArray("process-data-simulator: step 2, \"vanish\": key \"module\" is missing: "
                        "\"vanish\" needs it\nTry process-data-simulator --help.\n"));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
}

void SimulatorRunTest::aStepThatFailsEndsTheRun()
{
    VERIFY_COMMAND(simulator->start({"--control"}));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);

    QCOMPARE(run("vanish @,permissions @/Controller/1 mode=600,return @", 1),
             named("vanish @: done\n"
                   "permissions @/Controller/1 mode=600: failed: key \"source\": "
                   "\"@/Controller/1\" has vanished\n"
                   "return @: not run\n"));

    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
}

void SimulatorRunTest::withoutASimulatorThatTakesStepsNothingIsReachable()
{
    VERIFY_COMMAND(simulator->start({}));

    QCOMPARE(run("vanish @", 3), QByteArray());

    QVERIFY2(errors.startsWith("process-data-simulator: no simulator takes steps on "), errors);
    QVERIFY2(errors.contains("--control"), errors);
}

void SimulatorRunTest::withoutABusNothingIsReachable()
{
    const QByteArray before = qgetenv("PROCESSDATA_BUS");
    qputenv("PROCESSDATA_BUS", "unix:path=/nonexistent/bus");

    const QByteArray output = run("vanish @", 3);
    qputenv("PROCESSDATA_BUS", before);

    QCOMPARE(output, QByteArray());
    QVERIFY2(errors.startsWith("process-data-simulator: Cannot connect to "), errors);
}

void SimulatorRunTest::aSimulatorThatDoesNotAnswerCostsTheTimeLimit()
{
    VERIFY_COMMAND(simulator->start({"--control"}));
    simulator->process().suspend();

    const QByteArray output = run("vanish @", 4, {"--timeout", "0.3"});
    simulator->process().resume();

    QCOMPARE(output, QByteArray());
    QVERIFY2(errors.startsWith(named("process-data-simulator: step 1, \"vanish @\": no answer in "
                                     "time")),
             errors);
}

BUS_TEST_MAIN(SimulatorRunTest)
#include "SimulatorRunTest.moc"
