// SPDX-License-Identifier: MIT
// Blocking fetches of descriptions: what comes back, and how long a hung service may hold a client.
#include "BusTestMain.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "MessageLog.h"
#include "PrivateBus.h"
#include "ScriptedService.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

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
    PrivateBus bus;
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
        const MessageLog warnings;

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

    ScriptedService service;
    QVERIFY(service.serve("1", "text"));

    QTRY_VERIFY(connector->isDBusInterfaceValid());
}

void ConnectorFetchTest::aFetchReturnsTheDescriptionOfTheInstance()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "first"));
    QCOMPARE(service.order({"set", "", "nameless"}), QByteArray("ok"));
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
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));

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
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    QCOMPARE(service.order({"mode", mode}), QByteArray("ok"));

    const DBusReply reply = pump()->getProcessDataDescription("1", QString());

    QVERIFY(reply.isError());
    QVERIFY2(reply.getErrorMessage().endsWith(reason), qPrintable(reply.getErrorMessage()));
}

void ConnectorFetchTest::aDescriptionOfMoreThan64MiBIsRefused()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "60000");
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));

    for (int round = 0; round < 4; ++round) {
        QCOMPARE(service.order({"mode", "large"}), QByteArray("ok"));
        const DBusReply reply = pump()->getProcessDataDescription("1", QString());

        QVERIFY(reply.isError());
        QVERIFY2(reply.getErrorMessage().contains("larger than 64 MiB"),
                 qPrintable(reply.getErrorMessage()));
        // The connection still hears others.
        QCOMPARE(service.order({"mode", "ok"}), QByteArray("ok"));
        qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "5000");
        QCOMPARE(pump()->getProcessDataDescription("1", QString()).getValue(), QVariant("text"));
        qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "60000");
    }
}

void ConnectorFetchTest::manySourcesOfOneHungServiceCostOneTimeLimit()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    QVector<QSharedPointer<DBusProcessDescriptionConnector>> connectors;
    for (int i = 0; i < 10; ++i) {
        connectors += pump();
    }
    QTRY_VERIFY(connectors.first()->isDBusInterfaceValid());
    service.process().suspend();

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
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    // Its bus library still answers pings.
    QCOMPARE(service.order({"mode", "silent"}), QByteArray("ok"));
    const auto connector = pump();
    QVERIFY(connector->getProcessDataDescription("1", QString()).isError());

    const QString message = connector->getProcessDataDescription("1", QString()).getErrorMessage();

    QVERIFY2(message.contains(notAskedAgain), qPrintable(message));
}

void ConnectorFetchTest::aServiceThatComesBackIsFetchedAgainAndItsMissedInstancesAreAnnounced()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    QCOMPARE(service.order({"set", "2", "second"}), QByteArray("ok"));
    const auto first = pump();
    const auto second = pump();
    const auto third = pump();
    QVERIFY(!third->getProcessDataDescription("1", QString()).isError());
    service.process().suspend();
    QVERIFY(first->getProcessDataDescription("1", QString()).isError());
    QVERIFY(second->getProcessDataDescription("2", QString()).isError()); // at once
    QSignalSpy firstChanged(first.data(),
                            &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    QSignalSpy secondChanged(second.data(),
                             &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    QSignalSpy thirdChanged(third.data(),
                            &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    service.process().resume();

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
        ScriptedService service;
        QVERIFY(service.serve("1", "text"));
        service.process().suspend();
        QVERIFY(connector->getProcessDataDescription("1", QString()).isError());
    }
    QTRY_VERIFY(!connector->isDBusInterfaceValid());
    ScriptedService successor;
    QVERIFY(successor.serve("1", "new"));
    QTRY_VERIFY(connector->isDBusInterfaceValid());

    QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(), QVariant("new"));
}

void ConnectorFetchTest::anAsynchronousTimeoutIsRememberedToo()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "text"));
    const auto connector = pump();
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    service.process().suspend();
    const auto reply = connector->getProcessDataDescriptionAsynchron("1", QString());
    QSignalSpy failed(reply.data(), &DBusPendingReply::dBusServiceError);
    QTRY_COMPARE(failed.size(), 1);
    const QString message = connector->getProcessDataDescription("1", QString()).getErrorMessage();
    QVERIFY2(message.contains(notAskedAgain), qPrintable(message));
    QSignalSpy changed(connector.data(),
                       &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    service.process().resume();

    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QString("1"));
}

BUS_TEST_MAIN(ConnectorFetchTest)

#include "ConnectorFetchTest.moc"
