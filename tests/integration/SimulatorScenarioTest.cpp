// SPDX-License-Identifier: MIT
// Scenarios of the simulator: files that time faults, and the interface that runs their steps.
#include "BusTestMain.h"
#include "Files.h"
#include "SelectorHandlerProcessValue.h"
#include "SimulatorProcess.h"
#include "SystemTest.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

class SimulatorScenarioTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void timedStepsHappenByThemselvesInTheirOrder();
    void stepsAreListedAndShown();
    void aStepIsRunByItsName();
    void everyStepOfTheExampleCanBeRun();
    void aStepThatCannotBeRunIsNamed_data();
    void aStepThatCannotBeRunIsNamed();
    void aStepThatFailsInItsTimeIsReportedAndTheOthersGoOn();
    void whatAScenarioNamesIsLookedForWhenItIsLoaded();
    void aKeyThatLooksLikeAKnownOneIsReportedAndKept();
    void aBrokenScenarioEndsTheSimulator();
    void theNameOfTheControlServiceIsTakenOnce();

private:
    QString source() const { return module + "/Controller/1"; }

    QScopedPointer<SimulatorProcess> simulator;
};

namespace {

const QJsonObject pump = description(
    {leaf("level", "int32", {{"simulate", QJsonObject{{"kind", "constant"}, {"value", 5}}}})});

} // namespace

void SimulatorScenarioTest::init()
{
    SystemTest::init();
    simulator.reset(new SimulatorProcess(bus->address()));
    VERIFY_COMMAND(simulator->publish(module, pump));
}

void SimulatorScenarioTest::cleanup()
{
    simulator.reset();
    removeLeftBuffers(module);
    SystemTest::cleanup();
}

void SimulatorScenarioTest::timedStepsHappenByThemselvesInTheirOrder()
{
    VERIFY_COMMAND(simulator->startScenario(
        QString(R"({"format":"process-data-scenario/1","description":"retypes twice","steps":[
            {"name":"second","at":1.5,"do":"retype","source":"%1","leaf":"level","type":"float32"},
            {"name":"first","at":0.5,"do":"retype","source":"%1","leaf":"level","type":"int64"}]})")
            .arg(source())));
    QVERIFY2(simulator->waitForError("step first: done"), simulator->process().report());
    QVERIFY2(simulator->waitForError("step second: done"), simulator->process().report());
    const QByteArray errors = simulator->process().errors();
    QVERIFY(errors.indexOf("step first") < errors.indexOf("step second"));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);
    QCOMPARE(handler.getValue(0).getValue().userType(), int(QMetaType::Float));
}

void SimulatorScenarioTest::stepsAreListedAndShown()
{
    VERIFY_COMMAND(simulator->startScenario(QString(R"({"format":"process-data-scenario/1","steps":[
            {"name":"slow","do":"reply-late","source":"%1","delay":0.5},
            {"do":"kill"}]})")
                                                .arg(source())));
    QCOMPARE(simulator->ask("ListSteps"), QVariantList{QStringList({"slow", "2"})});
    QCOMPARE(simulator->ask("GetStep", "2"), QVariantList{R"({"do":"kill"})"});
    QVERIFY(simulator->call("GetStep", "3").contains("has no step \"3\""));
}

void SimulatorScenarioTest::aStepIsRunByItsName()
{
    VERIFY_COMMAND(simulator->startScenario(QString(R"({"format":"process-data-scenario/1","steps":[
            {"name":"wide","do":"retype","source":"%1","leaf":"level","type":"int64"}]})")
                                                .arg(source())));
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);
    QSignalSpy changes(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
    QCOMPARE(handler.getValue(0).getValue().userType(), int(QMetaType::Int));

    VERIFY_COMMAND(simulator->call("RunStep", "wide"));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{0}}), 20000);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(qint64(5)));
}

void SimulatorScenarioTest::everyStepOfTheExampleCanBeRun()
{
    const auto content = [this](const QString &name) {
        return contentOf(EXAMPLE_DATA "/" + name).replace("PumpStation", module.toUtf8());
    };
    SimulatorProcess example(bus->address());
    VERIFY_COMMAND(example.publish(
        module, QJsonDocument::fromJson(content("pump-station.pdd")).object(), "Pump"));
    VERIFY_COMMAND(example.startScenario(content("pump-station-faults.json")));
    const QStringList names = example.ask("ListSteps").value(0).toStringList();
    QCOMPARE(names.size(), 7);
    for (const QString &name : names) {
        VERIFY_COMMAND(example.call("RunStep", name));
    }
}

void SimulatorScenarioTest::aStepThatCannotBeRunIsNamed_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expected");

    QTest::newRow("unknown name") << "RunStep"
                                  << "nothing"
                                  << "Error.UnknownStep: The scenario "
                                     "has no step \"nothing\"";
    QTest::newRow("no JSON") << "RunInline"
                             << "{\n,}"
                             << "Error.InvalidStep: line 2: ";
    QTest::newRow("unknown fault") << "RunInline"
                                   << R"({"do":"explode"})"
                                   << "Error.InvalidStep: key \"do\": \"explode\" is none of ";
    QTest::newRow("another source")
        << "RunInline"
        << R"({"do":"reply-never","source":"a/b/c"})"
        << "Error.StepFailed: step inline: key \"source\": no file publishes \"a/b/c\"";
    QTest::newRow("another module")
        << "RunInline"
        << R"({"do":"vanish","module":"a"})"
        << "Error.StepFailed: step inline: key \"module\": no file publishes \"a\"";
    QTest::newRow("unknown method") << "Explode"
                                    << "x"
                                    << "No method Explode";
}

void SimulatorScenarioTest::aStepThatCannotBeRunIsNamed()
{
    QFETCH(QString, method);
    QFETCH(QString, argument);
    QFETCH(QString, expected);
    VERIFY_COMMAND(simulator->start({"--control"}));
    const QByteArray problem = simulator->call(method, argument);
    QVERIFY2(problem.contains(expected.toUtf8()), problem);
}

void SimulatorScenarioTest::aStepThatFailsInItsTimeIsReportedAndTheOthersGoOn()
{
    VERIFY_COMMAND(simulator->startScenario(QString(R"({"format":"process-data-scenario/1","steps":[
            {"name":"lost","at":0,"do":"reply-never","source":"a/b/c"},
            {"name":"late","at":0.1,"do":"reply-normally","source":"%1"}]})")
                                                .arg(source())));
    QVERIFY2(simulator->waitForError("step late: done"), simulator->process().report());
    QVERIFY(simulator->process().errors().contains(
        "step lost: key \"source\": no file publishes \"a/b/c\""));
}

void SimulatorScenarioTest::whatAScenarioNamesIsLookedForWhenItIsLoaded()
{
    VERIFY_COMMAND(simulator->startScenario(QString(R"({"format":"process-data-scenario/1","steps":[
            {"do":"vanish","module":"%1s"},
            {"name":"lost","do":"reply-never","source":"%1/Controllr/1"},
            {"name":"good","do":"retype","source":"%1/Controller/1","leaf":"level","type":"int8"},
            {"name":"none","do":"retype","source":"%1/Controller/1","leaf":"Level","type":"int8"}]})")
                                                .arg(module)));
    const QList<QByteArray> lines = simulator->process().errors().trimmed().split('\n');
    QVERIFY2(lines.size() == 3, simulator->process().report());
    const auto ends = [this](QByteArray text) { return text.replace('@', module.toUtf8()); };
    QVERIFY2(lines.at(0).endsWith(ends("scenario.json: step 1 would fail: key \"module\": no file "
                                       "publishes \"@s\"; did you mean \"@\"?")),
             lines.at(0));
    QVERIFY2(
        lines.at(1).endsWith(ends("scenario.json: step lost would fail: key \"source\": no file "
                                  "publishes \"@/Controllr/1\"; did you mean "
                                  "\"@/Controller/1\"?")),
        lines.at(1));
    QVERIFY2(lines.at(2).endsWith(ends("scenario.json: step none would fail: key \"leaf\": "
                                       "@/Controller/1 has no leaf \"Level\"; did you mean "
                                       "\"level\"?")),
             lines.at(2));
}

void SimulatorScenarioTest::aKeyThatLooksLikeAKnownOneIsReportedAndKept()
{
    const QString other = uniqueModule();
    VERIFY_COMMAND(simulator->publish(
        other, description({leaf("level", "int32", {{"readonly", true}, {"colour", "red"}})})));
    VERIFY_COMMAND(simulator->start({"--control"}));
    SelectorHandlerProcessValue handler({selectorUrl(other, "level")}, nullptr);

    QCOMPARE(handler.getProperty("readonly", 0), QVariant(true));
    QVERIFY(handler.setValue(ProcessValue(3), 0));
    // Vanishing and returning brings nothing new.
    VERIFY_COMMAND(
        simulator->call("RunInline", QString(R"({"do":"vanish","module":"%1"})").arg(other)));
    VERIFY_COMMAND(simulator->call(
        "RunInline", QString(R"({"name":"back","do":"return","module":"%1"})").arg(other)));
    QVERIFY2(simulator->waitForError("step back: done"), simulator->process().report());

    const QByteArray errors = simulator->process().errors();
    QVERIFY2(errors.contains(other.toUtf8()
                             + ".pdd: leaf \"level\": unknown key \"readonly\"; did "
                               "you mean \"readOnly\"?\n"),
             errors);
    QCOMPARE(errors.count("unknown key"), 1);
    removeLeftBuffers(other);
}

void SimulatorScenarioTest::aBrokenScenarioEndsTheSimulator()
{
    const QByteArray problem = simulator->startScenario("{\n\"format\":\n}");
    QVERIFY(!problem.isEmpty());
    QVERIFY(simulator->process().waitForEnd());
    QCOMPARE(simulator->process().exitCode(), 1);
    QVERIFY2(simulator->process().errors().contains("scenario.json: line 3: "),
             simulator->process().report());
}

void SimulatorScenarioTest::theNameOfTheControlServiceIsTakenOnce()
{
    VERIFY_COMMAND(simulator->start({"--control"}));
    const QString otherModule = uniqueModule();
    SimulatorProcess other(bus->address());
    VERIFY_COMMAND(other.publish(otherModule, pump));
    QVERIFY(!other.start({"--control"}).isEmpty());
    QVERIFY(other.process().waitForEnd());
    QCOMPARE(other.process().exitCode(), 3);
    QVERIFY2(other.process().errors().contains("com.orvalis.ProcessDataSimulator"),
             other.process().report());
}

BUS_TEST_MAIN(SimulatorScenarioTest)
#include "SimulatorScenarioTest.moc"
