// SPDX-License-Identifier: MIT
// The fetch that follows an asynchronous one asks whether the text still is the same.
#include "BusTestMain.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "PreparedDescription.h"
#include "PrivateBus.h"
#include "ProcessDataPublisher.h"
#include "ScriptedService.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Connector = QSharedPointer<DBusProcessDescriptionConnector>;

QJsonObject description(const QString &unit)
{
    const QJsonObject leaf{{"name", "speed"}, {"type", "float64"}, {"unit", unit}};
    return {{"format", "process-data-description/1"}, {"elements", QJsonArray{leaf}}};
}

// As after an announcement.
QVariant fetchAsynchronously(const Connector &connector)
{
    const auto reply = connector->getProcessDataDescriptionAsynchron("1", QString());
    QSignalSpy finished(reply.data(), &DBusPendingReply::dBusServiceFinished);
    return finished.wait() ? reply->getReply() : QVariant();
}

QVariant fetch(const Connector &connector, const QString &question = QString())
{
    return connector->getProcessDataDescription("1", question).getValue();
}
}

class SecondFetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }

    void theTokenStandsForTheTextThatWasFetchedBefore();
    void anotherTextReplacesTheOneThatWasFetchedBefore();
    void withoutAFetchBeforeNothingIsAsked();
    void aPublisherAnswersWithTheTokenOfItsPresentDescriptionOnly();

private:
    PrivateBus bus;
};

void SecondFetchTest::theTokenStandsForTheTextThatWasFetchedBefore()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "first"));
    const Connector connector
        = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    QCOMPARE(fetchAsynchronously(connector), QVariant("first"));

    QCOMPARE(service.order({"set", "1", descriptionToken("first")}), QByteArray("ok"));

    QCOMPARE(fetch(connector), QVariant("first"));
    QCOMPARE(fetch(connector), QVariant("first"));
    QCOMPARE(service.fetches(), 3); // each was a call
}

void SecondFetchTest::anotherTextReplacesTheOneThatWasFetchedBefore()
{
    ScriptedService service;
    QVERIFY(service.serve("1", "first"));
    const Connector connector
        = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    QCOMPARE(fetchAsynchronously(connector), QVariant("first"));

    QCOMPARE(service.order({"set", "1", "second"}), QByteArray("ok"));
    QCOMPARE(fetch(connector), QVariant("second"));

    // The first is forgotten: its token is a text like any other.
    const QString token = descriptionToken("first");
    QCOMPARE(service.order({"set", "1", token}), QByteArray("ok"));
    QCOMPARE(fetch(connector), QVariant(token));
}

void SecondFetchTest::withoutAFetchBeforeNothingIsAsked()
{
    ScriptedService service;
    const QString token = descriptionToken("first");
    QVERIFY(service.serve("1", token));
    const Connector connector
        = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    QCOMPARE(fetch(connector), QVariant(token));
}

void SecondFetchTest::aPublisherAnswersWithTheTokenOfItsPresentDescriptionOnly()
{
    QString error;
    const auto publisher
        = ProcessDataPublisher::create("Tank", "Controller", "1", description("m"), &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
    const Connector connector
        = DBusProcessDescriptionConnector::createAndConnect("Tank", "Controller");
    const QString before = fetch(connector).toString();
    const QString token = descriptionToken(before);
    QCOMPARE(fetch(connector, token), QVariant(token));
    QCOMPARE(fetch(connector, "anything else"), QVariant(before));

    QVERIFY2(publisher->replaceProperties(description("cm"), &error), qPrintable(error));

    const QString after = fetch(connector, token).toString();
    QVERIFY(after.contains("\"cm\""));
    QCOMPARE(fetch(connector, descriptionToken(after)), QVariant(descriptionToken(after)));
}

BUS_TEST_MAIN(SecondFetchTest)
#include "SecondFetchTest.moc"
