// SPDX-License-Identifier: MIT
// Blocking fetches of descriptions: what comes back, and how long a hung service may hold a client.
#include "BusDaemon.h"
#include "BusService.h"
#include "BusTestMain.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "WarningList.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString pumpService("com.orvalis.ProcessData.Pump");
const QString controllerPath("/com/orvalis/ProcessData/Controller");
const QString notAskedAgain("did not answer an earlier call in time");
constexpr int timeLimit = 700;

QSharedPointer<DBusProcessDescriptionConnector> pump()
{
    return DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
}
}

class ConnectorFetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", QByteArray::number(timeLimit)); }

    void aBusOutOfReachGivesNoConnectorAndOneWarningThatNamesItAndTheReason();
    void aConnectorExistsBeforeItsService();
    void aFetchReturnsTheDescriptionOfTheInstance();
    void aServiceWithoutOwnerFailsAtOnceAndIsNamed();
    void anErrorOfTheServiceIsHandedOnWithItsText();
    void anAnswerOfTheWrongTypeIsAnError_data();
    void anAnswerOfTheWrongTypeIsAnError();
    void aDescriptionOfMoreThan64MiBIsRefused();
    void manySourcesOfOneHungServiceCostOneTimeLimit();
    void aServiceThatHangsOnlyForOneObjectIsStillRemembered();
    void aServiceThatComesBackIsFetchedAgainAndItsMissedInstancesAreAnnounced();
    void aHungServiceThatDiesIsForgotten();
    void anAsynchronousTimeoutIsRememberedToo();

private:
    BusDaemon bus;
};

void ConnectorFetchTest::initTestCase()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", QByteArray::number(timeLimit));
    QVERIFY(bus.start());
}

void ConnectorFetchTest::aBusOutOfReachGivesNoConnectorAndOneWarningThatNamesItAndTheReason()
{
    const QByteArray address = qgetenv("PROCESSDATA_BUS");
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere/bus");
    {
        const WarningList warnings;

        QVERIFY(pump().isNull());

        QCOMPARE(warnings.texts(),
                 QStringList{
                     "processdata.bus: Cannot connect to the bus at unix:path=/nowhere/bus: Failed "
                     "to connect to socket /nowhere/bus: No such file or directory"});
    }
    qputenv("PROCESSDATA_BUS", address);
}

void ConnectorFetchTest::aConnectorExistsBeforeItsService()
{
    const auto connector = pump();
    QVERIFY(!connector.isNull());
    QVERIFY(!connector->isDBusInterfaceValid());

    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));

    QTRY_VERIFY(connector->isDBusInterfaceValid());
}

void ConnectorFetchTest::aFetchReturnsTheDescriptionOfTheInstance()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "first"));
    QCOMPARE(service.order({"set", "", "nameless"}), QString("ok"));
    const auto connector = pump();

    QTRY_VERIFY(connector->isDBusInterfaceValid());
    const DBusReply reply = connector->getProcessDataDescription("1", QString());

    QVERIFY2(!reply.isError(), qPrintable(reply.getErrorMessage()));
    QCOMPARE(reply.getValue(), QVariant("first"));
    QCOMPARE(connector->getProcessDataDescription("", QString()).getValue(), QVariant("nameless"));
}

void ConnectorFetchTest::aServiceWithoutOwnerFailsAtOnceAndIsNamed()
{
    const auto connector = pump();

    const DBusReply reply = connector->getProcessDataDescription("1", QString());

    QVERIFY(reply.isError());
    QVERIFY2(
        reply.getErrorMessage().startsWith("com.orvalis.ProcessData.Pump "
                                           "/com/orvalis/ProcessData/Controller, instance \"1\": "),
        qPrintable(reply.getErrorMessage()));
    QVERIFY(reply.getErrorMessage().contains("org.freedesktop.DBus.Error.NameHasNoOwner"));
}

void ConnectorFetchTest::anErrorOfTheServiceIsHandedOnWithItsText()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));

    const DBusReply reply = pump()->getProcessDataDescription("2", QString());

    QVERIFY(reply.isError());
    QCOMPARE(
        reply.getErrorMessage(),
        QString(
            "com.orvalis.ProcessData.Pump /com/orvalis/ProcessData/Controller, instance \"2\": no "
            "such instance (com.orvalis.Error.UnknownInstance)"));
}

void ConnectorFetchTest::anAnswerOfTheWrongTypeIsAnError_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a number") << "number"
                              << "the answer must be one string, its type is \"i\"";
    QTest::newRow("two strings") << "two"
                                 << "the answer must be one string, its type is \"ss\"";
}

void ConnectorFetchTest::anAnswerOfTheWrongTypeIsAnError()
{
    QFETCH(QString, mode);
    QFETCH(QString, reason);
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
    QCOMPARE(service.order({"mode", mode}), QString("ok"));

    const DBusReply reply = pump()->getProcessDataDescription("1", QString());

    QVERIFY(reply.isError());
    QVERIFY2(reply.getErrorMessage().endsWith(reason), qPrintable(reply.getErrorMessage()));
}

void ConnectorFetchTest::aDescriptionOfMoreThan64MiBIsRefused()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "60000");
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));

    for (int round = 0; round < 4; ++round) {
        QCOMPARE(service.order({"mode", "large"}), QString("ok"));
        const DBusReply reply = pump()->getProcessDataDescription("1", QString());

        QVERIFY(reply.isError());
        QVERIFY2(reply.getErrorMessage().contains("larger than 64 MiB"),
                 qPrintable(reply.getErrorMessage()));
        // The connection still hears others.
        QCOMPARE(service.order({"mode", "ok"}), QString("ok"));
        qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "5000");
        QCOMPARE(pump()->getProcessDataDescription("1", QString()).getValue(), QVariant("text"));
        qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "60000");
    }
}

void ConnectorFetchTest::manySourcesOfOneHungServiceCostOneTimeLimit()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
    QVector<QSharedPointer<DBusProcessDescriptionConnector>> connectors;
    for (int i = 0; i < 10; ++i) {
        connectors += pump();
    }
    QTRY_VERIFY(connectors.first()->isDBusInterfaceValid());
    QVERIFY(service.suspend());

    QStringList messages;
    for (const auto &connector : connectors) {
        QVERIFY(connector->isDBusInterfaceValid());
        messages += connector->getProcessDataDescription("1", QString()).getErrorMessage();
    }

    QVERIFY2(!messages.first().isEmpty() && !messages.first().contains(notAskedAgain),
             qPrintable(messages.first()));
    QCOMPARE(messages.filter(notAskedAgain).size(), connectors.size() - 1);
}

void ConnectorFetchTest::aServiceThatHangsOnlyForOneObjectIsStillRemembered()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
    QCOMPARE(service.order({"mode", "silent"}),
             QString("ok")); // its bus library still answers pings
    const auto connector = pump();
    QVERIFY(connector->getProcessDataDescription("1", QString()).isError());

    const QString message = connector->getProcessDataDescription("1", QString()).getErrorMessage();

    QVERIFY2(message.contains(notAskedAgain), qPrintable(message));
}

void ConnectorFetchTest::aServiceThatComesBackIsFetchedAgainAndItsMissedInstancesAreAnnounced()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
    QCOMPARE(service.order({"set", "2", "second"}), QString("ok"));
    const auto first = pump();
    const auto second = pump();
    const auto third = pump();
    QVERIFY(!third->getProcessDataDescription("1", QString()).isError());
    QVERIFY(service.suspend());
    QVERIFY(first->getProcessDataDescription("1", QString()).isError());
    QVERIFY(second->getProcessDataDescription("2", QString()).isError()); // at once
    QSignalSpy firstChanged(first.data(),
                            &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    QSignalSpy secondChanged(second.data(),
                             &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    QSignalSpy thirdChanged(third.data(),
                            &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    service.resume();

    QTRY_COMPARE(secondChanged.size(), 1);
    QTRY_COMPARE(firstChanged.size(), 1);
    QCOMPARE(firstChanged.at(0).at(0).toString(), QString("1"));
    QCOMPARE(secondChanged.at(0).at(0).toString(), QString("2"));
    QCOMPARE(thirdChanged.size(), 0); // it missed nothing
    QCOMPARE(second->getProcessDataDescription("2", QString()).getValue(), QVariant("second"));
}

void ConnectorFetchTest::aHungServiceThatDiesIsForgotten()
{
    const auto connector = pump();
    {
        BusService service;
        QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
        QVERIFY(service.suspend());
        QVERIFY(connector->getProcessDataDescription("1", QString()).isError());
    }
    QTRY_VERIFY(!connector->isDBusInterfaceValid());
    BusService successor;
    QVERIFY(successor.serve(pumpService, controllerPath, "1", "new"));
    QTRY_VERIFY(connector->isDBusInterfaceValid());

    QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(), QVariant("new"));
}

void ConnectorFetchTest::anAsynchronousTimeoutIsRememberedToo()
{
    BusService service;
    QVERIFY(service.serve(pumpService, controllerPath, "1", "text"));
    const auto connector = pump();
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    QVERIFY(service.suspend());
    const auto reply = connector->getProcessDataDescriptionAsynchron("1", QString());
    QSignalSpy failed(reply.data(), &DBusPendingReply::dBusServiceError);
    QTRY_COMPARE(failed.size(), 1);
    const QString message = connector->getProcessDataDescription("1", QString()).getErrorMessage();
    QVERIFY2(message.contains(notAskedAgain), qPrintable(message));
    QSignalSpy changed(connector.data(),
                       &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    service.resume();

    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QString("1"));
}

BUS_TEST_MAIN(ConnectorFetchTest)

#include "ConnectorFetchTest.moc"
