// SPDX-License-Identifier: MIT
// What scenario files may say.
#include "Scenario.h"

#include <QtTest>

class ScenarioTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFaultAndKeyIsTaken();
    void whatIsNotSaidHasItsDefault();
    void aRefusalNamesItsPlace_data();
    void aRefusalNamesItsPlace();
    void aStepByItselfTakesNoTime();
};

namespace {

QByteArray scenario(const QByteArray &steps)
{
    return R"({"format":"process-data-scenario/1","steps":[)" + steps + "]}";
}

} // namespace

void ScenarioTest::everyFaultAndKeyIsTaken()
{
    const QByteArray text = scenario(R"(
        {"name":"a","at":1.25,"do":"reply-late","source":"m/o/i/2","delay":0.5,"count":3},
        {"do":"reply-normally","source":"m/o/"},
        {"do":"reply-never","source":"m/o/i"},
        {"do":"reply-error","source":"m/o/i","error":"a.b","text":"busy"},
        {"do":"reply-text","source":"m/o/i","text":"{}"},
        {"do":"reply-huge","source":"m/o/i","bytes":1000},
        {"do":"vanish","module":"m"},
        {"do":"return","module":"m"},
        {"do":"kill"},
        {"do":"kill-in-write","source":"m/o/i","leaf":"a/b","writer":"client"},
        {"do":"retype","source":"m/o/i","leaf":"a/b","type":"string","capacity":9},
        {"do":"storm","source":"m/o/i","count":7,"change":"properties"},
        {"do":"permissions","source":"m/o/i","mode":"640"})");
    Scenario result;
    QString error;

    QVERIFY2(parseScenario("s.json", text, result, error), qPrintable(error));

    const QVector<Fault> expected{Fault::ReplyLate,   Fault::ReplyNormally, Fault::ReplyNever,
                                  Fault::ReplyError,  Fault::ReplyText,     Fault::ReplyHuge,
                                  Fault::Vanish,      Fault::Return,        Fault::Kill,
                                  Fault::KillInWrite, Fault::Retype,        Fault::Storm,
                                  Fault::Permissions};
    QCOMPARE(result.steps.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QVERIFY2(result.steps.at(i).fault == expected.at(i), qPrintable(QString::number(i)));
    }
    const ScenarioStep *first = result.find("a");
    QVERIFY(first != nullptr);
    QCOMPARE(first->at, 1250);
    QCOMPARE(first->source, QString("m/o/i/2"));
    QCOMPARE(first->delay, 500);
    QCOMPARE(first->count, 3);
    QCOMPARE(result.names().mid(0, 3), QStringList({"a", "2", "3"}));
    QCOMPARE(result.steps.at(3).error, QString("a.b"));
    QCOMPARE(result.steps.at(3).text, QString("busy"));
    QCOMPARE(result.steps.at(5).bytes, 1000);
    QCOMPARE(result.steps.at(6).module, QString("m"));
    QCOMPARE(result.steps.at(9).leaf, QString("a/b"));
    QVERIFY(result.steps.at(9).byClient);
    QCOMPARE(result.steps.at(10).type, QString("string"));
    QCOMPARE(result.steps.at(10).capacity, 9);
    QVERIFY(result.steps.at(11).ofProperties);
    QCOMPARE(result.steps.at(12).mode, 0640U);
}

void ScenarioTest::whatIsNotSaidHasItsDefault()
{
    Scenario result;
    QString error;
    QVERIFY(parseScenario("s.json", scenario(R"({"do":"kill-in-write","source":"m/o/i","leaf":"a"},
                                      {"do":"reply-error","source":"m/o/i"},
                                      {"do":"storm","source":"m/o/i","count":1})"),
                          result, error));
    QCOMPARE(result.steps.at(0).at, -1);
    QVERIFY(!result.steps.at(0).byClient);
    QCOMPARE(result.steps.at(1).count, -1);
    QCOMPARE(result.steps.at(1).error, QString("com.orvalis.ProcessData.Error.Simulated"));
    QVERIFY(!result.steps.at(2).ofProperties);
}

void ScenarioTest::aRefusalNamesItsPlace_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &text, const QString &expected) {
        QTest::newRow(name) << text << "s.json: " + expected;
    };
    const auto stepRow = [&row](const char *name, const QByteArray &step, const QString &expected) {
        row(name, scenario("{\"do\":\"kill\"}," + step), "step 2: " + expected);
    };

    row("no JSON", "{\n\n  \"format\" 1}", "line 3: ");
    row("an array", "[]", "line 1: a JSON object is expected");
    row("no format", R"({"steps":[]})", "key \"format\": \"process-data-scenario/1\" is expected");
    row("a later format", R"({"format":"process-data-scenario/2","steps":[]})",
        "key \"format\": \"process-data-scenario/1\" is expected");
    row("no steps", R"({"format":"process-data-scenario/1"})",
        "key \"steps\": an array of steps is expected");
    row("an unknown key", R"({"format":"process-data-scenario/1","steps":[],"step":[]})",
        "unknown key \"step\"; did you mean \"steps\"?");
    stepRow("a step that is no object", "5", "a JSON object is expected");
    stepRow("no fault", "{}", "key \"do\": \"\" is none of kill, kill-in-write, ");
    stepRow(
        "an unknown fault", R"({"do":"Kill"})",
        "key \"do\": \"Kill\" is none of kill, kill-in-write, permissions, reply-error, "
        "reply-huge, reply-late, reply-never, reply-normally, reply-text, return, retype, storm, "
        "vanish; did you mean \"kill\"?");
    stepRow("a missing key", R"({"do":"vanish"})",
            "key \"module\" is missing: \"vanish\" needs it");
    stepRow("a key of another fault", R"({"do":"kill","module":"m"})",
            "unknown key \"module\" for \"kill\"");
    stepRow("a key that is missing under its name", R"({"do":"vanish","modulle":"m"})",
            "key \"module\" is missing: \"vanish\" needs it; \"modulle\" looks like it");
    stepRow("a misspelt key", R"({"do":"reply-never","source":"m/o/i","Count":1})",
            "unknown key \"Count\" for \"reply-never\"; did you mean \"count\"?");
    stepRow("an empty name", R"({"do":"kill","name":""})",
            "key \"name\": a text that is not empty is expected");
    stepRow("a name twice", R"({"do":"kill","name":"1"})",
            "key \"name\": \"1\" is the name of an earlier step");
    stepRow("a time before the start", R"({"do":"kill","at":-1})",
            "key \"at\": 0 to 86400 seconds are expected");
    stepRow("a time as text", R"({"do":"kill","at":"1"})",
            "key \"at\": 0 to 86400 seconds are expected");
    stepRow("an incomplete source", R"({"do":"reply-never","source":"m/o"})",
            "key \"source\": MODULE/OBJECT/INSTANCE is expected");
    stepRow("an error that D-Bus does not take",
            R"({"do":"reply-error","source":"m/o/i","error":"busy"})",
            "key \"error\": a D-Bus error name such as com.example.Busy is expected");
    stepRow("no fetch", R"({"do":"reply-never","source":"m/o/i","count":0})",
            "key \"count\": a whole number from 1 to 100000 is expected");
    stepRow("a fraction", R"({"do":"storm","source":"m/o/i","count":1.5})",
            "key \"count\": a whole number from 1 to 100000 is expected");
    stepRow("more than a message holds",
            R"({"do":"reply-huge","source":"m/o/i","bytes":125829121})",
            "key \"bytes\": a whole number from 1 to 125829120 is expected");
    stepRow("an unknown writer",
            R"({"do":"kill-in-write","source":"m/o/i","leaf":"a","writer":"x"})",
            "key \"writer\": \"publisher\" or \"client\" is expected");
    stepRow("a mode that is not octal", R"({"do":"permissions","source":"m/o/i","mode":"648"})",
            "key \"mode\": an octal text from \"0\" to \"777\" is expected");
    stepRow("a mode beyond", R"({"do":"permissions","source":"m/o/i","mode":"1000"})",
            "key \"mode\": an octal text from \"0\" to \"777\" is expected");
}

void ScenarioTest::aRefusalNamesItsPlace()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    Scenario result;
    QString error;
    QVERIFY(!parseScenario("s.json", text, result, error));
    QVERIFY2(error.startsWith(expected), qPrintable(error));
    QVERIFY(result.steps.isEmpty());
}

void ScenarioTest::aStepByItselfTakesNoTime()
{
    ScenarioStep step;
    QString error;
    QVERIFY(parseScenarioStep(R"({"do":"kill"})", step, error));
    QCOMPARE(step.name, QString("inline"));
    QVERIFY(!parseScenarioStep(R"({"do":"kill","at":0})", step, error));
    QCOMPARE(error, QString("key \"at\": a step that is run at once takes no time"));
}

QTEST_GUILESS_MAIN(ScenarioTest)
#include "ScenarioTest.moc"
