// SPDX-License-Identifier: MIT
// A bus daemon that refuses a connection's greeting costs nobody more than that connection.
#include "BusLink.h"
#include "BusTestMain.h"
#include "DBusProcessDescriptionConnector.h"
#include "MessageLog.h"
#include "PrivateBus.h"
#include "ProcessDataPublisher.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

QJsonObject description()
{
    return {{"format", "process-data-description/1"},
            {"elements", QJsonArray{QJsonObject{{"name", "speed"}, {"type", "float64"}}}}};
}
}

class BusRefusalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aLinkSaysWhyItIsRefusedAndConnectsWhenThereIsRoom();
    void aLostLinkTriesAgainUntilItIsNoLongerRefused();
    void aConnectorIsRefusedWithAWarningAndMadeWhenThereIsRoom();
    void aPublisherIsRefusedWithAnErrorAndComesUpWhenThereIsRoom();

private:
    void startAnew(int connections);

    QScopedPointer<PrivateBus> bus;
};

void BusRefusalTest::startAnew(int connections)
{
    bus->stop();
    bus->setLimit("max_connections_per_user", connections);
    QVERIFY(bus->start());
}

void BusRefusalTest::init()
{
    bus.reset(new PrivateBus);
    startAnew(0);
}

void BusRefusalTest::cleanup()
{
    bus.reset();
}

void BusRefusalTest::aLinkSaysWhyItIsRefusedAndConnectsWhenThereIsRoom()
{
    BusLink link(BusChoice::fromEnvironment());
    QString error;
    QVERIFY(!link.open(error));
    QVERIFY2(error.contains("maximum number of active connections"), qPrintable(error));
    QVERIFY(!link.isConnected());

    startAnew(1);

    error.clear();
    QVERIFY2(link.open(error), qPrintable(error));
    BusLink second(BusChoice::fromEnvironment());
    QVERIFY(!second.open(error));
}

void BusRefusalTest::aLostLinkTriesAgainUntilItIsNoLongerRefused()
{
    startAnew(1);
    BusLink link(BusChoice::fromEnvironment());
    QString error;
    QVERIFY2(link.open(error), qPrintable(error));
    QSignalSpy lost(&link, &BusLink::lost);
    QSignalSpy restored(&link, &BusLink::restored);
    const MessageLog warnings;

    startAnew(0);
    QTRY_COMPARE(lost.count(), 1);
    QTRY_COMPARE(warnings.texts().size(), 2); // that it was lost, and that it is refused
    QVERIFY2(warnings.texts().at(1).contains("maximum number of active connections"),
             qPrintable(warnings.texts().at(1)));
    QCOMPARE(restored.count(), 0);

    startAnew(1);
    QTRY_COMPARE_WITH_TIMEOUT(restored.count(), 1, 20000);
    QVERIFY(link.isConnected());
}

void BusRefusalTest::aConnectorIsRefusedWithAWarningAndMadeWhenThereIsRoom()
{
    {
        const MessageLog warnings;
        QVERIFY(DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller").isNull());
        QCOMPARE(warnings.texts().size(), 1);
        QVERIFY2(warnings.texts().first().contains("maximum number of active connections"),
                 qPrintable(warnings.texts().first()));
    }

    startAnew(1);

    QVERIFY(!DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller").isNull());
}

void BusRefusalTest::aPublisherIsRefusedWithAnErrorAndComesUpWhenThereIsRoom()
{
    QString error;
    QVERIFY(
        ProcessDataPublisher::create("Pump", "Controller", "1", description(), &error).isNull());
    QVERIFY2(error.contains("maximum number of active connections"), qPrintable(error));

    startAnew(256);

    const auto publisher
        = ProcessDataPublisher::create("Pump", "Controller", "1", description(), &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
}

BUS_TEST_MAIN(BusRefusalTest)
#include "BusRefusalTest.moc"
