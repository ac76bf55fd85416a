// SPDX-License-Identifier: MIT
// Steps as they are typed on a command line.
#include "StepText.h"

#include <QJsonDocument>
#include <QtTest>

class StepTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTypedStepIsTheStepOfAScenario_data();
    void aTypedStepIsTheStepOfAScenario();
    void stepsKeepTheirOrderAndTheirText();
    void aStepOfTheScenarioIsNamed();
    void aRefusalNamesTheStep_data();
    void aRefusalNamesTheStep();
    void stepsOfSeveralTextsAreCountedTogether();
};

void StepTextTest::aTypedStepIsTheStepOfAScenario_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("a module") << "vanish Pump" << QByteArray(R"({"do":"vanish","module":"Pump"})");
    QTest::newRow("a source") << "reply-never m/o/i"
                              << QByteArray(R"({"do":"reply-never","source":"m/o/i"})");
    QTest::newRow("an empty instance")
        << "reply-normally m/o/" << QByteArray(R"({"do":"reply-normally","source":"m/o/"})");
    QTest::newRow("no place") << "kill" << QByteArray(R"({"do":"kill"})");
    QTest::newRow("numbers")
        << "reply-late m/o/i delay=1.5 count=3"
        << QByteArray(R"({"do":"reply-late","source":"m/o/i","delay":1.5,"count":3})");
    QTest::newRow("a text of digits")
        << "permissions m/o/i mode=600"
        << QByteArray(R"({"do":"permissions","source":"m/o/i","mode":"600"})");
    QTest::newRow("the place by its key")
        << "permissions mode=600 source=m/o/i"
        << QByteArray(R"({"do":"permissions","source":"m/o/i","mode":"600"})");
    QTest::newRow("a quoted text")
        << R"(reply-error m/o/i text="busy, \"very\" = \\ a\b")"
        << QByteArray(R"({"do":"reply-error","source":"m/o/i","text":"busy, \"very\" = \\ a\\b"})");
    QTest::newRow("a quoted place")
        << R"(vanish "a=b, c")" << QByteArray(R"({"do":"vanish","module":"a=b, c"})");
    QTest::newRow("an equals sign in a value")
        << "reply-text m/o/i text=a=b"
        << QByteArray(R"({"do":"reply-text","source":"m/o/i","text":"a=b"})");
    QTest::newRow("many blanks") << "  vanish\t  Pump  "
                                 << QByteArray(R"({"do":"vanish","module":"Pump"})");
    QTest::newRow("a name") << "kill name=bang" << QByteArray(R"({"do":"kill","name":"bang"})");
}

void StepTextTest::aTypedStepIsTheStepOfAScenario()
{
    QFETCH(QString, typed);
    QFETCH(QByteArray, json);
    QVector<TypedStep> steps;
    QString error;

    QVERIFY2(parseSteps(typed, steps, error), qPrintable(error));

    QCOMPARE(steps.size(), 1);
    QJsonObject expected = QJsonDocument::fromJson(json).object();
    if (!expected.contains("name")) {
        expected.insert("name", typed.trimmed());
    }
    QCOMPARE(steps.first().step.json, expected);
    QCOMPARE(steps.first().step.name, expected.value("name").toString());
    QCOMPARE(steps.first().scenarioStep, QString());
}

void StepTextTest::stepsKeepTheirOrderAndTheirText()
{
    QVector<TypedStep> steps;
    QString error;

    QVERIFY(parseSteps("vanish  A, reply-text m/o/i text=\"a,b\"", steps, error));
    QVERIFY(parseSteps("kill", steps, error));

    QCOMPARE(steps.size(), 3);
    QCOMPARE(steps.at(0).text, QString("vanish  A"));
    QCOMPARE(steps.at(1).text, QString("reply-text m/o/i text=\"a,b\""));
    QCOMPARE(steps.at(2).text, QString("kill"));
    QVERIFY(steps.at(1).step.fault == Fault::ReplyText);
    QCOMPARE(steps.at(1).step.text, QString("a,b"));
}

void StepTextTest::aStepOfTheScenarioIsNamed()
{
    QVector<TypedStep> steps;
    QString error;

    QVERIFY2(parseSteps("step \"power off\",step 2", steps, error), qPrintable(error));

    QCOMPARE(steps.at(0).scenarioStep, QString("power off"));
    QCOMPARE(steps.at(1).scenarioStep, QString("2"));
}

void StepTextTest::aRefusalNamesTheStep_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << ""
                             << "step 1, \"\": it is empty";
    QTest::newRow("a comma too many") << "vanish A,"
                                      << "step 2, \"\": it is empty";
    QTest::newRow("an open quote") << "kill name=\"a, kill"
                                   << "step 1, \"kill name=\"a, kill\": a quote is not closed";
    QTest::newRow("an unknown fault")
        << "vanish A,explode B"
        << "step 2, \"explode B\": key \"do\": \"explode\" is none of kill, ";
    QTest::newRow("a missing place")
        << "vanish"
        << "step 1, \"vanish\": key \"module\" is missing: \"vanish\" needs it";
    QTest::newRow("a missing key") << "reply-late m/o/i"
                                   << "step 1, \"reply-late m/o/i\": key \"delay\" is missing";
    QTest::newRow("an incomplete source")
        << "reply-never m/o"
        << "step 1, \"reply-never m/o\": key \"source\": MODULE/OBJECT/INSTANCE is expected";
    QTest::newRow("a place too many")
        << "reply-text m/o/i text=no description"
        << "step 1, \"reply-text m/o/i text=no description\": unexpected \"description\": ";
    QTest::newRow("a place for nothing") << "kill A"
                                         << "step 1, \"kill A\": unexpected \"A\": ";
    QTest::newRow("the place twice")
        << "vanish A module=B"
        << "step 1, \"vanish A module=B\": key \"module\" is given twice";
    QTest::newRow("no number")
        << "reply-late m/o/i delay=soon"
        << "step 1, \"reply-late m/o/i delay=soon\": key \"delay\": 0 to 86400 seconds are expected";
    QTest::newRow("a time")
        << "kill at=1"
        << "step 1, \"kill at=1\": key \"at\": a step that is run at once takes no time";
    QTest::newRow("a key first") << "do=kill"
                                 << "step 1, \"do=kill\": it begins with the key \"do\"";
    QTest::newRow("a step without a name") << "step"
                                           << "step 1, \"step\": \"step\" takes the name of ";
    QTest::newRow("two names") << "step a b"
                               << "step 1, \"step a b\": \"step\" takes the name of ";
    QTest::newRow("more after the end")
        << "kill,vanish A"
        << "step 2, \"vanish A\": \"kill\" before it ends the simulator";
    QTest::newRow("more after the end in a write")
        << "kill-in-write m/o/i leaf=a,kill"
        << "step 2, \"kill\": \"kill-in-write m/o/i leaf=a\" before it ends the simulator";
}

void StepTextTest::aRefusalNamesTheStep()
{
    QFETCH(QString, typed);
    QFETCH(QString, expected);
    QVector<TypedStep> steps;
    QString error;

    QVERIFY(!parseSteps(typed, steps, error));

    QVERIFY2(error.startsWith(expected), qPrintable(error));
}

void StepTextTest::stepsOfSeveralTextsAreCountedTogether()
{
    QVector<TypedStep> steps;
    QString error;

    QVERIFY(parseSteps("kill-in-write m/o/i leaf=a writer=client", steps, error));
    QVERIFY(!parseSteps("vanish A,nothing", steps, error));

    QVERIFY2(error.startsWith("step 3, \"nothing\""), qPrintable(error));
}

QTEST_APPLESS_MAIN(StepTextTest)
#include "StepTextTest.moc"
