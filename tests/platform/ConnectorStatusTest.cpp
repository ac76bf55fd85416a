// SPDX-License-Identifier: MIT
// The end of the system's start-up is told once, whenever a client comes.
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "ScriptedService.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString managerService("com.orvalis.SystemStatusManager");
const QString path("/com/orvalis/SystemStatusManager");
const QString interface("com.orvalis.SystemStatusManager1");

class Manager : public ScriptedService
{
public:
    bool comeUp(bool ready)
    {
        return order({"ready", ready ? "true" : "false"}) == "ok" && order({"export", path}) == "ok"
            && order({"own", managerService}) == "ok";
    }
    void finishStartUp()
    {
        order({"ready", "true"});
        order({"signal", path, interface, "StartupReady"});
    }
};
}

class ConnectorStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }

    void aSystemThatIsReadyAlreadyIsToldOnceFromTheEventLoop();
    void aStartUpIsToldWhenItEnds();
    void oneStartUpIsNeverToldTwice();
    void theSignalOfAStartUpThatWasFoundOverIsNotToldAgain();
    void aManagerThatComesReadyIsHeard();
    void aRestartOfTheManagerIsNoStartUp();
    void strangersCannotTellOfAStartUp();
    void withoutABusThereIsNoConnector();

private:
    PrivateBus bus;
};

void ConnectorStatusTest::aSystemThatIsReadyAlreadyIsToldOnceFromTheEventLoop()
{
    Manager manager;
    QVERIFY(manager.comeUp(true));
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QCOMPARE(ready.size(), 0);

    QTRY_COMPARE(ready.size(), 1);

    const auto late = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy lateReady(late.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QTRY_COMPARE(lateReady.size(), 1);
    QCOMPARE(ready.size(), 1);
}

void ConnectorStatusTest::aStartUpIsToldWhenItEnds()
{
    Manager manager;
    QVERIFY(manager.comeUp(false));
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    QCOMPARE(ready.size(), 0);

    manager.finishStartUp();

    QTRY_COMPARE(ready.size(), 1);
}

void ConnectorStatusTest::oneStartUpIsNeverToldTwice()
{
    for (int round = 0; round < 20; ++round) {
        Manager manager;
        QVERIFY(manager.comeUp(false));
        const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
        QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);

        manager.finishStartUp(); // while the connector asks whether it is over already
        QTRY_COMPARE(ready.size(), 1);
        manager.order({"ready", "false"});
        manager.order({"unready"});
        manager.finishStartUp(); // another one
        QTRY_VERIFY(ready.size() > 1);
        QCOMPARE(ready.size(), 2);
    }
}

void ConnectorStatusTest::theSignalOfAStartUpThatWasFoundOverIsNotToldAgain()
{
    Manager manager;
    QVERIFY(manager.comeUp(true));
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QTRY_COMPARE(ready.size(), 1);

    manager.finishStartUp(); // its signal comes after the property
    manager.order({"unready"});
    manager.finishStartUp(); // another one

    QTRY_VERIFY(ready.size() > 1);
    QCOMPARE(ready.size(), 2);
}

void ConnectorStatusTest::aManagerThatComesReadyIsHeard()
{
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QTRY_VERIFY(!connector->isDBusInterfaceValid());
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    Manager manager;

    QVERIFY(manager.comeUp(true));

    QTRY_COMPARE(ready.size(), 1);
}

void ConnectorStatusTest::aRestartOfTheManagerIsNoStartUp()
{
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    {
        Manager manager;
        QVERIFY(manager.comeUp(true));
        QTRY_COMPARE(ready.size(), 1);
    }
    Manager successor;
    QVERIFY(successor.comeUp(true));
    QTRY_VERIFY(connector->isDBusInterfaceValid());

    successor.finishStartUp(); // the only one to be heard

    QTRY_VERIFY(ready.size() > 1);
    QCOMPARE(ready.size(), 2);
}

void ConnectorStatusTest::strangersCannotTellOfAStartUp()
{
    Manager manager;
    QVERIFY(manager.comeUp(false));
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    ScriptedService stranger;

    stranger.order({"signal", path, interface, "StartupReady"});
    manager.order({"signal", "/other/path", interface, "StartupReady"});
    manager.finishStartUp();

    QTRY_VERIFY(ready.size() > 0);
    QCOMPARE(ready.size(), 1);
}

void ConnectorStatusTest::withoutABusThereIsNoConnector()
{
    const QByteArray address = qgetenv("PROCESSDATA_BUS");
    qputenv("PROCESSDATA_BUS", "nonsense");
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression("Cannot connect to the bus at nonsense: .+"));

    QVERIFY(SystemStatusManagerDBusConnector::createAndConnect().isNull());

    qputenv("PROCESSDATA_BUS", address);
}

BUS_TEST_MAIN(ConnectorStatusTest)

#include "ConnectorStatusTest.moc"
