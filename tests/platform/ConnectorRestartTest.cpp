// SPDX-License-Identifier: MIT
// The bus daemon goes and comes back: connectors follow, and nothing that was said meanwhile is
// lost.
#include "BusTestMain.h"
#include "DBusProcessDescriptionConnector.h"
#include "PrivateBus.h"
#include "ScriptedService.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

namespace {

int openDescriptors()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files)
        .size();
}
}

class ConnectorRestartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(bus.start()); }
    void cleanup() { bus.stop(); }

    void aServiceOnTheNewBusIsFoundAndItsInstancesAnnounced();
    void manyRestartsLeaveNothingOpen();
    void aCallUnderWayEndsWithTheBus();
    void aStatusConnectorHearsOfAStartUpAfterTheRestart();
    void aConnectorCanBeMadeRightAfterTheRestart();

private:
    PrivateBus bus;
};

void ConnectorRestartTest::aServiceOnTheNewBusIsFoundAndItsInstancesAnnounced()
{
    const auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    {
        ScriptedService service;
        QVERIFY(service.serve("1", "old"));
        QTRY_VERIFY(connector->isDBusInterfaceValid());
        bus.stop();
    }
    QTRY_VERIFY(!connector->isDBusInterfaceValid());
    QSignalSpy changed(connector.data(),
                       &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    // The service is there before the connector is back, and says nothing: it is found.
    QVERIFY(bus.start());
    ScriptedService service;
    QCOMPARE(service.order({"set", "2", "second"}), QByteArray("ok"));
    QVERIFY(service.serve("1", "new"));
    service.announce("1"); // in case the connector was quicker
    service.announce("2");

    QTRY_VERIFY(changed.contains({QString("1")}));
    QTRY_VERIFY(changed.contains({QString("2")}));
    QVERIFY(connector->isDBusInterfaceValid());
    QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(), QVariant("new"));
    changed.clear();
    service.announce("3");
    QTRY_VERIFY(changed.contains({QString("3")})); // subscribed again
}

void ConnectorRestartTest::manyRestartsLeaveNothingOpen()
{
    const auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    int before = 0;
    for (int round = 0; round < 10; ++round) {
        {
            ScriptedService service;
            QVERIFY(service.serve("1", QString::number(round)));
            QTRY_VERIFY(connector->isDBusInterfaceValid());
            QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(),
                     QVariant(QString::number(round)));
        }
        if (round == 1) {
            before = openDescriptors();
        }
        bus.stop();
        QTRY_VERIFY(!connector->isDBusInterfaceValid());
        QVERIFY(bus.start());
    }
    ScriptedService service;
    QVERIFY(service.serve("1", "last"));
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    service.process().kill();

    QTRY_COMPARE(openDescriptors(), before);
}

void ConnectorRestartTest::aCallUnderWayEndsWithTheBus()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "30000");
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    QCOMPARE(service.order({"mode", "silent"}), QByteArray("ok"));
    const auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    bool failed = false;
    QScopedPointer<QThread> thread(QThread::create(
        [&] { failed = connector->getProcessDataDescription("1", QString()).isError(); }));
    thread->start();
    QTRY_COMPARE(service.fetches(), 1);

    bus.stop();

    QVERIFY(thread->wait(5000));
    QVERIFY(failed);
    qunsetenv("PROCESSDATA_DBUS_TIMEOUT_MS");
    QVERIFY(bus.start());
}

void ConnectorRestartTest::aStatusConnectorHearsOfAStartUpAfterTheRestart()
{
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QVERIFY(!connector.isNull());
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    bus.stop();
    QVERIFY(bus.start());
    ScriptedService manager;
    QCOMPARE(manager.order({"export", "/com/orvalis/SystemStatusManager"}), QByteArray("ok"));
    QCOMPARE(manager.order({"ready", "true"}), QByteArray("ok"));
    QCOMPARE(manager.order({"own", "com.orvalis.SystemStatusManager"}), QByteArray("ok"));

    QTRY_COMPARE(ready.size(), 1);
}

void ConnectorRestartTest::aConnectorCanBeMadeRightAfterTheRestart()
{
    const auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    bus.stop();
    QTRY_VERIFY(DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller").isNull());
    QVERIFY(bus.start());

    QVERIFY(!DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller").isNull());

    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    QTRY_VERIFY(connector->isDBusInterfaceValid());
}

BUS_TEST_MAIN(ConnectorRestartTest)

#include "ConnectorRestartTest.moc"
