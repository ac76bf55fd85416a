// SPDX-License-Identifier: MIT
// selector explain says what clients meet: the same properties, and a buffer that is being replaced.
#include "BusTestMain.h"
#include "InstanceListClient.h"
#include "ScriptedService.h"
#include "SystemTest.h"

#include <QJsonDocument>
#include <QTest>

class ExplainAgreesTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void itHasThePropertiesThatPropertiesHas_data();
    void itHasThePropertiesThatPropertiesHas();
    void itListsThePropertiesThatPropertiesLists();
    void aBufferThatIsReplacedMeanwhileIsNobodysFault_data();
    void aBufferThatIsReplacedMeanwhileIsNobodysFault();
    void aBufferThatStaysAwayIsToldOfAllTheSame();

private:
    QScopedPointer<PublisherProcess> publisher;
    QScopedPointer<ScriptedService> service;
    QString other; ///< module of the scripted service
    QByteArray present;
    QByteArray past; ///< names a buffer that is gone
};

void ExplainAgreesTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(
        publisher->serve(module, description({leaf("speed", "float64", {{"unit", "1/min"}})})));
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
    QString text;
    QString error;
    QCOMPARE(fetchDescription(module, "Controller", "1", text, error), BusQueryResult::Ok);
    other = module + "b";
    QJsonObject served = claimed(QJsonDocument::fromJson(text.toUtf8()).object(), other, "1");
    present = oneLine(served);
    QJsonObject buffer = served["buffer"].toObject();
    const double gone = buffer["generation"].toDouble() - 1;
    buffer["name"]
        = buffer["name"].toString().section('.', 0, -2) + '.' + QString::number(gone, 'f', 0);
    buffer["generation"] = gone;
    served["buffer"] = buffer;
    past = oneLine(served);
    service.reset(new ScriptedService(other));
    QVERIFY(service->comeUp());
}

void ExplainAgreesTest::cleanup()
{
    service.reset();
    publisher.reset();
    SystemTest::cleanup();
}

void ExplainAgreesTest::itHasThePropertiesThatPropertiesHas_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("session") << "session" << 0;
    QTest::newRow("offset") << "offset" << 0;
    QTest::newRow("unit") << "unit" << 0;
    QTest::newRow("name") << "name" << 0;
    QTest::newRow("one that is not there") << "colour" << 1;
}

void ExplainAgreesTest::itHasThePropertiesThatPropertiesHas()
{
    QFETCH(const QString, property);
    QFETCH(const int, exitCode);
    for (const char *command : {"explain", "properties"}) {
        ChildProcess client(SELECTOR,
                            {command, "--property", property, selectorUrl(module, "speed")});
        VERIFY_RUN(client, exitCode);
    }
}

void ExplainAgreesTest::itListsThePropertiesThatPropertiesLists()
{
    ChildProcess properties(SELECTOR,
                            {"properties", "--format", "csv", selectorUrl(module, "speed")});
    QVERIFY(properties.run());
    QByteArrayList names;
    const QByteArrayList lines = properties.output().trimmed().split('\n');
    for (const QByteArray &line : lines.mid(1)) {
        names += line.split(',').value(1);
    }
    ChildProcess explain(SELECTOR,
                         {"explain", "--property", "colour", selectorUrl(module, "speed")});
    QVERIFY(explain.run());
    QVERIFY2(names.size() > 3 && explain.errors().contains("it has: " + names.join(", ") + '\n'),
             explain.report() + properties.report());
}

void ExplainAgreesTest::aBufferThatIsReplacedMeanwhileIsNobodysFault_data()
{
    QTest::addColumn<int>("fetchesBefore");
    for (int i = 0; i < 4; ++i) {
        QTest::addRow("after %d good answers", i) << i;
    }
}

void ExplainAgreesTest::aBufferThatIsReplacedMeanwhileIsNobodysFault()
{
    QFETCH(const int, fetchesBefore);
    QVERIFY(service->describe("1", present));
    for (int i = 0; i < fetchesBefore; ++i) {
        QCOMPARE(service->order({"once", "1", present}), QByteArray("ok"));
    }
    QCOMPARE(service->order({"once", "1", past}), QByteArray("ok"));

    ChildProcess client(SELECTOR, {"explain", "--property", "unit", selectorUrl(other, "speed")});
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 0 && client.errors().isEmpty(), client.report());
}

void ExplainAgreesTest::aBufferThatStaysAwayIsToldOfAllTheSame()
{
    QVERIFY(service->describe("1", past));
    ChildProcess client(SELECTOR, {"explain", selectorUrl(other, "speed")});
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 1 && client.errors().contains("buffer file"), client.report());
}

BUS_TEST_MAIN(ExplainAgreesTest)
#include "ExplainAgreesTest.moc"
