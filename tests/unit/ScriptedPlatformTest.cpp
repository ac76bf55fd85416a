// SPDX-License-Identifier: MIT
// What the scripted platform promises to the tests of applications.
#include "ScriptedPlatform.h"
#include "IndexLists.h"
#include "ProcessDataDefinitions.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "WarningLog.h"

#include <QtTest>

namespace {

const QString speedUrl = "processdata://PumpStation/Pump/1/drive/speed";

struct Client
{
    explicit Client(const QVector<QString> &urls)
        : handler(urls, nullptr)
    {
    }
    IndexLists changes() const { return indexLists(descriptions); }

    SelectorHandlerProcessValue handler;
    QSignalSpy descriptions{&handler, SIGNAL(processDataDescriptionChanged(QVector<int>))};
};

struct Pump
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source("PumpStation", "Pump", "1").leaf("drive/speed", 1450.5);
    ScriptedLeaf speed = source.at("drive/speed");
};

} // namespace

class ScriptedPlatformTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unlessToldTheNamesAreThoseOfTheReferencePlatform()
    {
        Pump pump;
        pump.speed.readOnly();
        QCOMPARE(pump.source.urlOf("drive/speed"), speedUrl);
        Client client({speedUrl, speedUrl + "?deactivated", "scripted://PumpStation/Pump/1/speed"});
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(1450.5));
        QVERIFY(isErrorValue(client.handler.getValue(1)));
        QVERIFY(isErrorValue(client.handler.getValue(2)));
        QCOMPARE(client.handler.getProperty("readOnly", 0), QVariant(true));
        QVERIFY(!client.handler.setValue(valueOf(1), 0));
        QVERIFY(client.handler.setValue(valueOf(1), 1));
        QCOMPARE(pump.speed.written().size(), 0);
    }

    void partsOfAUrlAreEncodedAndFoundAgain()
    {
        ScriptedPlatform platform;
        ScriptedSource source = platform.source("Tank", "Level", "Nord 1/ä").leaf("full?", true);
        QCOMPARE(source.urlOf("full?"),
                 QString("processdata://Tank/Level/Nord%201%2F%C3%A4/full%3F"));
        Client client({source.urlOf("full?"), "processdata://Tank/Level//full%3F"});
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(true));
        QVERIFY(isErrorValue(client.handler.getValue(1)));
    }

    void aUrlThatNoPlatformTakesIsRefused_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("no leaf") << "processdata://PumpStation/Pump/1";
        QTest::newRow("a leaf without a name") << "processdata://PumpStation/Pump/1/drive/";
        QTest::newRow("bad percent encoding") << "processdata://PumpStation/Pump/1/drive%2";
        QTest::newRow("another query") << "processdata://PumpStation/Pump/1/drive/speed?off";
    }

    void aUrlThatNoPlatformTakesIsRefused()
    {
        QFETCH(QString, url);
        Pump pump;
        const WarningLog warnings;
        Client client({url});
        QVERIFY(isErrorValue(client.handler.getValue(0)));
        QCOMPARE(warnings.texts().size(), 1);
        QVERIFY2(warnings.texts().first().startsWith("SelectorUrl not valid:"),
                 qPrintable(warnings.texts().first()));
    }

    void aServiceThatDisappearsLeavesItsLastValues()
    {
        Pump pump;
        Client client({speedUrl});
        pump.source.disappears();
        const ProcessValue value = client.handler.getValue(0);
        QCOMPARE(value.getValue(), QVariant(1450.5));
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::SourceLost);
        QVERIFY(!client.handler.setValue(valueOf(1), 0));
        QCOMPARE(pump.speed.written().size(), 0);
        QCOMPARE(client.descriptions.size(), 0);
    }

    void aServiceThatReturnsTellsAllClientsOfAllInstances()
    {
        Pump pump;
        pump.platform.source("PumpStation", "Pump", "2").leaf("drive/speed", 2);
        const QString second = QString(speedUrl).replace("/1/", "/2/");
        Client both({speedUrl, second});
        Client other({second});
        pump.source.disappears();
        QCOMPARE(both.handler.getValue(1).getErrorType(), ProcessDataDefinitions::SourceLost);

        QCOMPARE(pump.source.returns(), 3);
        QCOMPARE(both.changes(), (IndexLists{{0}, {1}}));
        QCOMPARE(other.changes(), (IndexLists{{0}}));
        QCOMPARE(both.handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
        QVERIFY(both.handler.setValue(valueOf(7), 0));
        QCOMPARE(pump.speed.value().getValue(), QVariant(7));

        pump.source.disappears();
        QCOMPARE(pump.source.returns(), 3);
        QCOMPARE(other.changes(), (IndexLists{{0}, {0}}));
    }

    void aLeafOfTheRunBeforeStaysLostUntilItsClientFetches()
    {
        Pump pump;
        Client client({speedUrl});
        pump.source.disappears();
        pump.source.fetchesFail("busy");
        QCOMPARE(pump.source.returns(), 1);
        QCOMPARE(client.descriptions.size(), 0);
        QCOMPARE(client.handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
        pump.source.fetchesGive(pump.source.description());
        QCOMPARE(pump.source.changeDescription(), 1);
        QCOMPARE(client.handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    }

    void aChangeWhoseFetchFailsWarnsAndChangesNothing()
    {
        Pump pump;
        Client client({speedUrl});
        pump.speed.property("unit", "1/s");
        pump.source.fetchesFail("busy");
        const WarningLog warnings;
        QCOMPARE(pump.source.changeDescription(), 1);
        QCOMPARE(warnings.texts(), QStringList{"DBus error ErrorContainer(1, \"busy\")"});
        QVERIFY(!client.handler.getProperty("unit", 0).isValid());
        QCOMPARE(client.descriptions.size(), 0);
    }

    void aChangeThatNobodyHearsIsCounted()
    {
        Pump pump;
        QCOMPARE(pump.source.changeDescription(), 0);
        QCOMPARE(pump.source.changeProperties(), 0);
        QCOMPARE(pump.source.returns(), 0);
    }

    void aRefusedReadGivesTheErrorValue()
    {
        Pump pump;
        Client client({speedUrl});
        pump.speed.refusesReads();
        QVERIFY(isErrorValue(client.handler.getValue(0)));
        pump.speed.refusesReads(false).holds(3, ProcessDataDefinitions::OutOfRange, 42);
        const ProcessValue value = client.handler.getValue(0);
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::OutOfRange);
        QCOMPARE(value.getTimestamp(), qint64(42));
    }
};

QTEST_GUILESS_MAIN(ScriptedPlatformTest)
#include "ScriptedPlatformTest.moc"
