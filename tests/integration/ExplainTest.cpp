// SPDX-License-Identifier: MIT
// selector explain names each fault on a selector's way, here made for real, by its step.
#include "InstanceListClient.h"
#include "ScriptedService.h"
#include "SystemTest.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include <unistd.h>

class ExplainTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aWorkingSelectorPassesEveryStep();
    void faultsOfTheTextAreToldWithoutABus_data();
    void faultsOfTheTextAreToldWithoutABus();
    void aMissingBusIsOutOfReach();
    void aServiceThatDoesNotRunHasNoOwner();
    void unknownObjectsAndInstancesAreToldWithTheKnownOnes_data();
    void unknownObjectsAndInstancesAreToldWithTheKnownOnes();
    void aStoppedServiceRunsIntoTheTimeLimit();
    void aDescriptionThatClientsRefuseIsToldWithItsRule();
    void aServiceThatAnswersSomethingElseFailsAtItsDescription();
    void aRemovedBufferIsToldWithItsFile();
    void aBufferThatMayNotBeReadIsDenied();
    void aBufferOfAnotherOwnerIsDenied();
    void anOverwrittenBufferFailsAtItsLayout();
    void aDeadPublisherBehindALivingServiceFailsAtLiveness();
    void aMistypedLeafIsToldWithTheNearestOne();
    void aMissingPropertyIsToldWithThoseThatAreThere();
    void aLeafThatWasNeverPublishedFailsAtItsValue();
    void tableAndCsvReadAsWritten_data();
    void tableAndCsvReadAsWritten();
    void severalSelectorsAreWalkedOneByOne();
    void ofSeveralSelectorsTheGravestFaultDecides();

private:
    struct Outcome
    {
        QString step; ///< the first that failed; "" when none did
        QString finding;
        QString advice;
        int exitCode = -1;
    };

    QString url(const QString &path) const { return selectorUrl(module, path); }
    QJsonObject served() const;
    bool serve(const QByteArray &description, const QByteArray &mode = "ok");
    static Outcome explain(const QStringList &arguments, const QStringList &prefix = {});

    QScopedPointer<PublisherProcess> publisher;
    QScopedPointer<ScriptedService> impostor;
};

namespace {

const QStringList allSteps{"text",     "scheme",      "module",     "bus",        "serviceOwner",
                           "object",   "description", "bufferFile", "permission", "layout",
                           "liveness", "leaf",        "property",   "value"};

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

// Compares the outcome's step and exit code, and part of its finding; advice there must be.
#define COMPARE_OUTCOME(outcome, wantedStep, wantedCode, wantedFinding)                            \
    do {                                                                                           \
        const Outcome got = (outcome);                                                             \
        QVERIFY2(got.step == QString(wantedStep) && got.exitCode == (wantedCode)                   \
                     && got.finding.contains(wantedFinding),                                       \
                 qPrintable(got.step + ' ' + QString::number(got.exitCode) + ' ' + got.finding));  \
        QVERIFY(!got.advice.isEmpty());                                                            \
    } while (false)

void ExplainTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(
        module,
        description({leaf("speed", "float64", {{"unit", "1/min"}}), leaf("idle", "bool")})));
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
}

void ExplainTest::cleanup()
{
    impostor.reset();
    publisher.reset();
    SystemTest::cleanup();
}

// The description as the publisher serves it now.
QJsonObject ExplainTest::served() const
{
    QString text;
    QString error;
    fetchDescription(module, "Controller", "1", text, error);
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

// Kills the publisher and puts another service with a description of our own in its place.
bool ExplainTest::serve(const QByteArray &description, const QByteArray &mode)
{
    publisher->process().kill();
    impostor.reset(new ScriptedService(module));
    return impostor->order({"mode", mode}) == "ok" && impostor->serve("1", description);
}

ExplainTest::Outcome ExplainTest::explain(const QStringList &arguments, const QStringList &prefix)
{
    QStringList command = prefix + QStringList{SELECTOR, "explain", "--format", "json"} + arguments;
    const QString program = command.takeFirst();
    ChildProcess client(program, command);
    if (!client.run()) {
        return {"did not end", client.report(), {}, -1};
    }
    const QJsonObject document = QJsonDocument::fromJson(client.output()).object();
    const QJsonArray results = document["results"].toArray();
    Outcome outcome;
    outcome.exitCode = client.exitCode();
    if (document["schema"] != "selector.explain/1" || results.size() != allSteps.size()) {
        return {"no report", client.report(), {}, outcome.exitCode};
    }
    for (int i = 0; i < results.size(); ++i) {
        const QJsonObject step = results.at(i).toObject();
        const bool before = outcome.step.isEmpty();
        const bool failed = step["status"] == "failed";
        if (step["step"] != allSteps.at(i) || step["url"] != arguments.last()
            || (step["status"] != "ok" && before && !failed)
            || (step["status"] != "skipped" && !before)) {
            return {"wrong step", client.report(), {}, outcome.exitCode};
        }
        if (failed) {
            outcome.step = step["step"].toString();
            outcome.finding = step["finding"].toString();
            outcome.advice = step["advice"].toString();
        }
    }
    return outcome;
}

void ExplainTest::aWorkingSelectorPassesEveryStep()
{
    for (const char *query : {"", "?deactivated"}) {
        const Outcome outcome = explain({"--property", "unit", url("speed") + query});
        QVERIFY2(outcome.step.isEmpty() && outcome.exitCode == 0,
                 qPrintable(outcome.step + ' ' + outcome.finding));
    }
}

void ExplainTest::faultsOfTheTextAreToldWithoutABus_data()
{
    QTest::addColumn<QString>("selector");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("finding");
    QTest::newRow("no scheme") << "://Pump/Controller/1/speed"
                               << "text"
                               << "scheme and";
    QTest::newRow("no leaf") << "processdata://Pump/Controller/1"
                             << "text"
                             << "3 of at least 4";
    QTest::newRow("percent") << "processdata://Pump/Controller/1/a%zz"
                             << "text"
                             << "\"a%zz\"";
    QTest::newRow("empty group") << "processdata://Pump/Controller/1//a"
                                 << "text"
                                 << "no name";
    QTest::newRow("query") << "processdata://Pump/Controller/1/a?off"
                           << "text"
                           << "query";
    QTest::newRow("fragment") << "processdata://Pump/Controller/1/a#b"
                              << "text"
                              << "fragment";
    QTest::newRow("too long") << "processdata://Pump/Controller/1/" + QString(4065, 'a') << "text"
                              << "4097 bytes, more than 4096";
    QTest::newRow("scheme") << "http://Pump/Controller/1/a"
                            << "scheme"
                            << "\"http\"";
    QTest::newRow("module") << "processdata://Pu_mp/Controller/1/a"
                            << "module"
                            << "module \"Pu_mp\" contains \"_\"";
    QTest::newRow("object") << "processdata://Pump//1/a"
                            << "module"
                            << "the object is empty";
}

void ExplainTest::faultsOfTheTextAreToldWithoutABus()
{
    QFETCH(const QString, selector);
    QFETCH(const QString, step);
    QFETCH(const QString, finding);
    bus->stop();
    COMPARE_OUTCOME(explain({selector}), step, 1, finding);
}

void ExplainTest::aMissingBusIsOutOfReach()
{
    bus->stop();
    COMPARE_OUTCOME(explain({url("speed")}), "bus", 3, "bus");
}

void ExplainTest::aServiceThatDoesNotRunHasNoOwner()
{
    const Outcome outcome = explain({selectorUrl("Nobody", "speed")});
    COMPARE_OUTCOME(outcome, "serviceOwner", 1, "com.orvalis.ProcessData.Nobody");
    QVERIFY2(outcome.advice.contains('"' + module + '"'), qPrintable(outcome.advice));
}

void ExplainTest::unknownObjectsAndInstancesAreToldWithTheKnownOnes_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("instance");
    QTest::addColumn<QString>("known");
    QTest::newRow("object") << "Control"
                            << "1"
                            << "\"Controller\"";
    QTest::newRow("instance") << "Controller"
                              << "2"
                              << "\"1\"";
}

void ExplainTest::unknownObjectsAndInstancesAreToldWithTheKnownOnes()
{
    QFETCH(const QString, object);
    QFETCH(const QString, instance);
    QFETCH(const QString, known);
    const Outcome outcome = explain({selectorUrl(module, "speed", object, instance)});
    COMPARE_OUTCOME(outcome, "object", 1, "has no");
    QVERIFY2(outcome.advice.endsWith(known), qPrintable(outcome.advice));
}

void ExplainTest::aStoppedServiceRunsIntoTheTimeLimit()
{
    publisher->process().suspend();
    COMPARE_OUTCOME(explain({"--timeout", "0.3", url("speed")}), "object", 4, module);
}

void ExplainTest::aDescriptionThatClientsRefuseIsToldWithItsRule()
{
    QJsonObject twice = served();
    QJsonArray elements = twice["elements"].toArray();
    elements.append(elements.first());
    twice["elements"] = elements;
    QVERIFY(serve(compact(twice)));
    COMPARE_OUTCOME(explain({url("speed")}), "description", 1, "\"speed\"");
}

void ExplainTest::aServiceThatAnswersSomethingElseFailsAtItsDescription()
{
    QVERIFY(serve("{}", "number"));
    COMPARE_OUTCOME(explain({url("speed")}), "description", 1, "the answer's type is \"i\"");
}

void ExplainTest::aRemovedBufferIsToldWithItsFile()
{
    const QString file = bufferFile(module);
    QVERIFY(QFile::remove(file));
    COMPARE_OUTCOME(explain({url("speed")}), "bufferFile", 1, file);
}

void ExplainTest::aBufferThatMayNotBeReadIsDenied()
{
    QVERIFY(QFile::setPermissions(bufferFile(module), QFile::Permissions()));
    COMPARE_OUTCOME(explain({url("speed")}, powerless()), "permission", 5, "mode 0000");
}

void ExplainTest::aBufferOfAnotherOwnerIsDenied()
{
    QJsonObject foreign = served();
    QJsonObject buffer = foreign["buffer"].toObject();
    buffer["ownerUid"] = double(::geteuid()) + 1;
    foreign["buffer"] = buffer;
    QVERIFY(serve(compact(foreign)));
    COMPARE_OUTCOME(explain({url("speed")}), "permission", 5, "its owner is ");
}

void ExplainTest::anOverwrittenBufferFailsAtItsLayout()
{
    QFile file(bufferFile(module));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.write("rubbish!") == 8);
    file.close();
    COMPARE_OUTCOME(explain({url("speed")}), "layout", 1, "not a process-data buffer");
}

void ExplainTest::aDeadPublisherBehindALivingServiceFailsAtLiveness()
{
    const QJsonObject last = served();
    QVERIFY(serve(compact(last)));
    COMPARE_OUTCOME(explain({url("speed")}), "liveness", 1, "died");
}

void ExplainTest::aMistypedLeafIsToldWithTheNearestOne()
{
    const Outcome outcome = explain({url("Sped")});
    COMPARE_OUTCOME(outcome, "leaf", 1, "no leaf \"Sped\"");
    QVERIFY2(outcome.advice.contains("mean \"speed\""), qPrintable(outcome.advice));
}

void ExplainTest::aMissingPropertyIsToldWithThoseThatAreThere()
{
    const Outcome outcome = explain({"--property", "unit", url("idle")});
    COMPARE_OUTCOME(outcome, "property", 1, "\"unit\"");
    QVERIFY2(outcome.advice.contains("type"), qPrintable(outcome.advice));
}

void ExplainTest::aLeafThatWasNeverPublishedFailsAtItsValue()
{
    COMPARE_OUTCOME(explain({url("idle")}), "value", 1, "NotInitialized");
}

void ExplainTest::tableAndCsvReadAsWritten_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("table") << "table"
                           << QByteArray(R"(STEP           RESULT   FINDING              ADVICE
text           ok       well formed
scheme         failed   the scheme is "pdt"  process data has the scheme "processdata"
module         skipped  -
bus            skipped  -
service owner  skipped  -
object         skipped  -
description    skipped  -
buffer file    skipped  -
permission     skipped  -
layout         skipped  -
liveness       skipped  -
leaf           skipped  -
property       skipped  -
value          skipped  -
)");
    QTest::newRow("csv") << "csv" << QByteArray(R"(step,result,finding,advice,url,label
text,ok,well formed,,pdt://Pump/Controller/1/a,
scheme,failed,"the scheme is ""pdt""","process data has the scheme ""processdata""",pdt://Pump/Controller/1/a,
module,skipped,,,pdt://Pump/Controller/1/a,
bus,skipped,,,pdt://Pump/Controller/1/a,
serviceOwner,skipped,,,pdt://Pump/Controller/1/a,
object,skipped,,,pdt://Pump/Controller/1/a,
description,skipped,,,pdt://Pump/Controller/1/a,
bufferFile,skipped,,,pdt://Pump/Controller/1/a,
permission,skipped,,,pdt://Pump/Controller/1/a,
layout,skipped,,,pdt://Pump/Controller/1/a,
liveness,skipped,,,pdt://Pump/Controller/1/a,
leaf,skipped,,,pdt://Pump/Controller/1/a,
property,skipped,,,pdt://Pump/Controller/1/a,
value,skipped,,,pdt://Pump/Controller/1/a,
)");
}

void ExplainTest::tableAndCsvReadAsWritten()
{
    QFETCH(const QString, format);
    QFETCH(const QByteArray, output);
    ChildProcess client(SELECTOR, {"explain", "--format", format, "pdt://Pump/Controller/1/a"});
    QVERIFY(client.run());
    QCOMPARE(client.output(), output);
    QCOMPARE(client.errors(),
             QByteArray("selector: pdt://Pump/Controller/1/a: scheme: the scheme is \"pdt\"; "
                        "process data has the scheme \"processdata\"\n"));
}

void ExplainTest::severalSelectorsAreWalkedOneByOne()
{
    const QStringList urls{url("speed"), url("idle"), url("speed") + "?deactivated"};
    ChildProcess client(SELECTOR, QStringList{"explain", "-j"} + urls);
    QVERIFY(client.run());
    QCOMPARE(client.exitCode(), 1);
    const QJsonArray results
        = QJsonDocument::fromJson(client.output()).object()["results"].toArray();
    QCOMPARE(results.size(), urls.size() * allSteps.size());
    for (int i = 0; i < results.size(); ++i) {
        QCOMPARE(results.at(i)["url"].toString(), urls.at(i / allSteps.size()));
        QCOMPARE(results.at(i)["step"].toString(), allSteps.at(i % allSteps.size()));
    }

    ChildProcess table(SELECTOR, {"explain", "a=" + url("speed"), url("idle")});
    QVERIFY(table.run());
    QStringList headings;
    const QStringList lines = QString::fromUtf8(table.output()).split('\n');
    for (int i = 0; i + 1 < lines.size(); ++i) {
        if (lines.at(i + 1).startsWith("STEP ")) {
            headings.append(lines.at(i));
        }
    }
    QCOMPARE(headings, (QStringList{"a=" + url("speed"), url("idle")}));
}

void ExplainTest::ofSeveralSelectorsTheGravestFaultDecides()
{
    const QString broken = "processdata://Pump/Controller/1/a%zz";
    ChildProcess client(SELECTOR, {"explain", url("speed"), broken});
    QVERIFY(client.run());
    QCOMPARE(client.exitCode(), 1);
    bus->stop();
    for (const QStringList &urls : {QStringList{url("speed"), broken}, {broken, url("speed")}}) {
        ChildProcess withoutBus(SELECTOR, QStringList{"explain"} + urls);
        QVERIFY(withoutBus.run());
        QCOMPARE(withoutBus.exitCode(), 3);
    }
}

QTEST_GUILESS_MAIN(ExplainTest)
#include "ExplainTest.moc"
