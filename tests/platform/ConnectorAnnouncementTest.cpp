// SPDX-License-Identifier: MIT
// Announcements: whose are believed, what gets through, and how services come and go.
#include "BusTestMain.h"
#include "DBusProcessDescriptionConnector.h"
#include "PrivateBus.h"
#include "ScriptedService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QtTest>

namespace {

const QString path("/com/orvalis/ProcessData/Controller");
const QString interface("com.orvalis.ProcessDescription1");

// Records both signals of a connector in the order in which they come.
class Heard
{
public:
    explicit Heard(const QString &module = "Pump")
        : connector(DBusProcessDescriptionConnector::createAndConnect(module, "Controller"))
    {
        QObject::connect(connector.data(),
                         &DBusProcessDescriptionConnector::processDataDescriptionChanged,
                         [this](const QString &instance) { list += "description " + instance; });
        QObject::connect(connector.data(), &DBusProcessDescriptionConnector::propertyChanged,
                         [this](const QString &instance) { list += "property " + instance; });
    }

    QSharedPointer<DBusProcessDescriptionConnector> connector;
    QStringList list;
};
}

class ConnectorAnnouncementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }

    void announcementsOfTheOwnerArriveInTheirOrder();
    void announcementsOfOthersAreDropped();
    void announcementsOfAnotherObjectOrFormAreDropped();
    void twoModulesWithTheSameObjectAreNotMixedUp();
    void whatAServiceSaysRightAfterItCameUpIsNeverLost();
    void ownersAreTrackedWhileTheThreadRunsNoEventLoop();
    void aStormIsDeliveredAsFewChangesAndInTheRightState();
    void theKindAnnouncedLastIsReportedLast();
    void aConnectorMayBeReleasedInsideItsSignal();

private:
    PrivateBus bus;
};

void ConnectorAnnouncementTest::announcementsOfTheOwnerArriveInTheirOrder()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    Heard heard;

    service.announce("1");
    service.announce("2", "PropertyChanged");
    service.announce("");

    QTRY_COMPARE(heard.list, (QStringList{"description 1", "property 2", "description "}));
}

void ConnectorAnnouncementTest::announcementsOfOthersAreDropped()
{
    ScriptedService service;
    ScriptedService stranger;
    QVERIFY(service.serve("1", "text"));
    Heard heard;
    QTRY_VERIFY(heard.connector->isDBusInterfaceValid());

    stranger.announce("forged");
    QCOMPARE(stranger.order({"own", "some.other.Name"}), QByteArray("ok"));
    stranger.announce("forged too");
    service.announce("genuine");

    QTRY_COMPARE(heard.list, QStringList{"description genuine"});
}

void ConnectorAnnouncementTest::announcementsOfAnotherObjectOrFormAreDropped()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    Heard heard;

    for (const QString &other : {QString("/com/orvalis/ProcessData/Other"), path + "/below"}) {
        service.order({"signal", other, interface, "ProcessDataDescriptionChanged", "other path"});
    }
    service.order({"signal", path, interface, "SomethingElse", "other member"});
    service.order({"signal", path, "other.interface", "PropertyChanged", "other interface"});
    service.announce("last");

    QTRY_COMPARE(heard.list, QStringList{"description last"});
}

void ConnectorAnnouncementTest::twoModulesWithTheSameObjectAreNotMixedUp()
{
    ScriptedService pump;
    ScriptedService tank("Tank");
    QVERIFY(pump.serve("1", "text"));
    QVERIFY(tank.serve("1", "text"));
    Heard pumpHeard;
    Heard tankHeard("Tank");

    tank.announce("of tank");
    pump.announce("of pump");

    QTRY_COMPARE(pumpHeard.list, QStringList{"description of pump"});
    QTRY_COMPARE(tankHeard.list, QStringList{"description of tank"});
}

void ConnectorAnnouncementTest::whatAServiceSaysRightAfterItCameUpIsNeverLost()
{
    Heard early;
    for (int round = 0; round < 30; ++round) {
        ScriptedService service;
        QVERIFY(service.comeUp());
        Heard late; // asks for the owner while the announcement is on its way
        service.announce(QString::number(round));

        const QString expected = "description " + QString::number(round);
        QTRY_VERIFY2(early.list.contains(expected), qPrintable(early.list.join(", ")));
        QTRY_VERIFY2(late.list.contains(expected), qPrintable(late.list.join(", ")));
    }
    QCOMPARE(early.list.size(), 30);
}

void ConnectorAnnouncementTest::ownersAreTrackedWhileTheThreadRunsNoEventLoop()
{
    const auto waitFor = [](const DBusProcessDescriptionConnector &connector, bool valid) {
        const QDeadlineTimer deadline(5000);
        while (connector.isDBusInterfaceValid() != valid && !deadline.hasExpired()) {
            QThread::yieldCurrentThread();
        }
        return connector.isDBusInterfaceValid() == valid;
    };
    const Heard heard;
    for (int round = 0; round < 3; ++round) {
        ScriptedService service;
        QVERIFY(waitFor(*heard.connector, false));
        QVERIFY(service.serve("1", "text"));

        QVERIFY(waitFor(*heard.connector, true));
        QCOMPARE(heard.connector->getProcessDataDescription("1", QString()).getValue(),
                 QVariant("text"));
    }
}

void ConnectorAnnouncementTest::aStormIsDeliveredAsFewChangesAndInTheRightState()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    Heard heard;
    QTRY_VERIFY(heard.connector->isDBusInterfaceValid());

    // The client's thread waits for the helper meanwhile and runs no event loop.
    service.order({"signal", path, interface, "ProcessDataDescriptionChanged", "1", "10000"});
    service.announce("end");

    QTRY_VERIFY(heard.list.contains("description end"));
    QCOMPARE(heard.list.last(), QString("description end"));
    QVERIFY2(heard.list.count("description 1") >= 1,
             qPrintable(QString::number(heard.list.size())));
    QVERIFY2(heard.list.count("description 1") <= 100,
             qPrintable(QString::number(heard.list.size())));
}

void ConnectorAnnouncementTest::theKindAnnouncedLastIsReportedLast()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    Heard heard;
    QTRY_VERIFY(heard.connector->isDBusInterfaceValid());

    service.announce("1");
    service.announce("2");
    service.announce("1"); // says no more than the first, which still waits
    service.announce("1", "PropertyChanged");
    service.announce("1");

    QTRY_VERIFY(heard.list.contains("property 1"));
    QTRY_COMPARE(heard.list.last(), QString("description 1"));
    // Only the third may have been left out, and only if the first had not been delivered yet.
    heard.list.removeOne("description 1");
    if (heard.list.size() == 4) {
        heard.list.removeOne("description 1");
    }
    QCOMPARE(heard.list, (QStringList{"description 2", "property 1", "description 1"}));
}

void ConnectorAnnouncementTest::aConnectorMayBeReleasedInsideItsSignal()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    int heard = 0;
    connect(connector.data(), &DBusProcessDescriptionConnector::processDataDescriptionChanged, this,
            [&] {
                ++heard;
                connector.reset();
            });
    Heard other;

    service.announce("1");
    service.announce("2");

    QTRY_COMPARE(other.list.size(), 2);
    QCOMPARE(heard, 1);
    QVERIFY(connector.isNull());
}

BUS_TEST_MAIN(ConnectorAnnouncementTest)

#include "ConnectorAnnouncementTest.moc"
