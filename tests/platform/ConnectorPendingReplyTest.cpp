// SPDX-License-Identifier: MIT
// Asynchronous fetches: they report once, from the event loop, and never after their release.
#include "BusTestMain.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "PrivateBus.h"
#include "ScriptedService.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

namespace {

// Takes the error by a string connection, as clients of the contract do.
class Receiver : public QObject
{
    Q_OBJECT

public:
    ErrorContainer error;
    int errors = 0;
    int finished = 0;

public Q_SLOTS:
    void takeError(const ErrorContainer &newError)
    {
        error = newError;
        ++errors;
    }
    void takeEnd() { ++finished; }
};
}

class ConnectorPendingReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void aReplyReportsOnceFromTheEventLoopAndThenHasTheDescription();
    void aFailureReportsItsError();
    void aSilentServiceEndsInAnErrorAfterTheTimeLimit();
    void anErrorReachesASlotOfAnotherThread();
    void aReplyReleasedWhileItWaitsNeverReports();
    void aReplyReleasedWhenItsEndIsAlreadyQueuedNeverReports();
    void aReplyMayBeReleasedInsideItsOwnSignal();
    void aReplyOutlivesItsConnector();
    void aReplyAskedForInAnotherThreadReportsInTheConnectors();
    void withoutABusThereIsNoReply();
    void whatWasUnderWayWhenTheBusDiedHoldsNothingUp();

private:
    QSharedPointer<DBusPendingReply> ask(const QString &instance)
    {
        return connector->getProcessDataDescriptionAsynchron(instance, QString());
    }
    void listen(DBusPendingReply *reply, Receiver *receiver)
    {
        connect(reply, SIGNAL(dBusServiceFinished()), receiver, SLOT(takeEnd()));
        connect(reply, SIGNAL(dBusServiceError(ErrorContainer)), receiver,
                SLOT(takeError(ErrorContainer)));
    }

    PrivateBus bus;
    QScopedPointer<ScriptedService> service;
    QSharedPointer<DBusProcessDescriptionConnector> connector;
};

void ConnectorPendingReplyTest::initTestCase()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "1500");
    QVERIFY(bus.start());
}

void ConnectorPendingReplyTest::init()
{
    service.reset(new ScriptedService);
    QVERIFY(service->serve("1", "text"));
    connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    QTRY_VERIFY(connector->isDBusInterfaceValid());
}

void ConnectorPendingReplyTest::aReplyReportsOnceFromTheEventLoopAndThenHasTheDescription()
{
    Receiver receiver;
    const auto reply = ask("1");
    listen(reply.data(), &receiver);
    QVERIFY(!reply->getReply().isValid());
    // This answer comes after the other one on the same connection.
    QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(), QVariant("text"));
    QCOMPARE(receiver.finished, 0);
    QVERIFY(!reply->getReply().isValid());

    QTRY_COMPARE(receiver.finished, 1);

    QCOMPARE(reply->getReply(), QVariant("text"));
    const auto next = ask("1");
    QSignalSpy nextFinished(next.data(), &DBusPendingReply::dBusServiceFinished);
    QTRY_COMPARE(nextFinished.size(), 1);
    QCOMPARE(receiver.finished, 1);
    QCOMPARE(receiver.errors, 0);
}

void ConnectorPendingReplyTest::aFailureReportsItsError()
{
    Receiver receiver;
    const auto reply = ask("2");
    listen(reply.data(), &receiver);

    QTRY_COMPARE(receiver.errors, 1);

    QVERIFY(receiver.error.getCode() != 0);
    QCOMPARE(
        receiver.error.getText(),
        QString(
            "com.orvalis.ProcessData.Pump /com/orvalis/ProcessData/Controller, instance \"2\": no "
            "such instance (com.orvalis.Error.UnknownInstance)"));
    QVERIFY(!reply->getReply().isValid());
    QCOMPARE(receiver.finished, 0);
}

void ConnectorPendingReplyTest::aSilentServiceEndsInAnErrorAfterTheTimeLimit()
{
    QCOMPARE(service->order({"mode", "silent"}), QByteArray("ok"));
    Receiver receiver;
    const auto reply = ask("1");
    listen(reply.data(), &receiver);

    QTRY_COMPARE(receiver.errors, 1);

    QVERIFY2(receiver.error.getText().contains("NoReply"), qPrintable(receiver.error.getText()));
    QCOMPARE(service->order({"flush"}), QByteArray("ok")); // too late
    // Until an answer shows that the service is back, fetches fail at once.
    QTRY_VERIFY(!connector->getProcessDataDescription("1", QString()).isError());
    const auto next = ask("1");
    QSignalSpy nextFinished(next.data(), &DBusPendingReply::dBusServiceFinished);
    QTRY_COMPARE(nextFinished.size(), 1);
    QCOMPARE(receiver.errors, 1);
    QCOMPARE(receiver.finished, 0);
}

void ConnectorPendingReplyTest::anErrorReachesASlotOfAnotherThread()
{
    QThread thread;
    Receiver receiver;
    receiver.moveToThread(&thread);
    thread.start();
    const auto reply = ask("2");
    listen(reply.data(), &receiver);
    QSignalSpy failed(reply.data(), &DBusPendingReply::dBusServiceError);

    QTRY_COMPARE(failed.size(), 1);
    QMetaObject::invokeMethod(
        &receiver, [&thread] { thread.quit(); }, Qt::QueuedConnection);
    QVERIFY(thread.wait(5000));

    QCOMPARE(receiver.errors, 1);
    QVERIFY(receiver.error.getText().contains("UnknownInstance"));
}

void ConnectorPendingReplyTest::aReplyReleasedWhileItWaitsNeverReports()
{
    QCOMPARE(service->order({"mode", "silent"}), QByteArray("ok"));
    Receiver receiver;
    auto reply = ask("1");
    listen(reply.data(), &receiver);
    QTRY_COMPARE(service->fetches(), 1);

    reply.reset();
    QCOMPARE(service->order({"flush"}), QByteArray("ok"));

    const auto next = ask("1");
    QSignalSpy nextFinished(next.data(), &DBusPendingReply::dBusServiceFinished);
    QTRY_COMPARE(nextFinished.size(), 1);
    QCOMPARE(receiver.finished + receiver.errors, 0);
}

void ConnectorPendingReplyTest::aReplyReleasedWhenItsEndIsAlreadyQueuedNeverReports()
{
    Receiver receiver;
    auto reply = ask("1");
    listen(reply.data(), &receiver);
    QCOMPARE(connector->getProcessDataDescription("1", QString()).getValue(), QVariant("text"));

    reply.reset();

    const auto next = ask("1");
    QSignalSpy nextFinished(next.data(), &DBusPendingReply::dBusServiceFinished);
    QTRY_COMPARE(nextFinished.size(), 1);
    QCOMPARE(receiver.finished + receiver.errors, 0);
}

void ConnectorPendingReplyTest::aReplyMayBeReleasedInsideItsOwnSignal()
{
    int ends = 0;
    auto good = ask("1");
    connect(good.data(), &DBusPendingReply::dBusServiceFinished, this, [&] {
        ++ends;
        good.reset();
    });
    auto bad = ask("2");
    connect(bad.data(), &DBusPendingReply::dBusServiceError, this, [&] {
        ++ends;
        bad.reset();
    });

    QTRY_COMPARE(ends, 2);

    QVERIFY(good.isNull());
    QVERIFY(bad.isNull());
}

void ConnectorPendingReplyTest::aReplyOutlivesItsConnector()
{
    const auto reply = ask("1");
    connector.reset();
    QSignalSpy finished(reply.data(), &DBusPendingReply::dBusServiceFinished);

    QTRY_COMPARE(finished.size(), 1);

    QCOMPARE(reply->getReply(), QVariant("text"));
}

void ConnectorPendingReplyTest::aReplyAskedForInAnotherThreadReportsInTheConnectors()
{
    QThread *reportedIn = nullptr;
    QSharedPointer<DBusPendingReply> reply;
    QScopedPointer<QThread> thread(QThread::create([&] { reply = ask("1"); }));
    thread->start();
    QVERIFY(thread->wait(5000));
    QCOMPARE(reply->thread(), connector->thread());
    connect(
        reply.data(), &DBusPendingReply::dBusServiceFinished, this,
        [&] { reportedIn = QThread::currentThread(); }, Qt::DirectConnection);

    QTRY_COMPARE(reportedIn, QThread::currentThread());
}

void ConnectorPendingReplyTest::withoutABusThereIsNoReply()
{
    bus.stop();
    QTRY_VERIFY(!connector->isDBusInterfaceValid());

    QVERIFY(ask("1").isNull());
    QVERIFY(connector->getProcessDataDescription("1", QString()).isError());

    QVERIFY(bus.start());
}

// Later fetches of an instance wait for the end of the one before, also when nobody else does.
void ConnectorPendingReplyTest::whatWasUnderWayWhenTheBusDiedHoldsNothingUp()
{
    QCOMPARE(service->order({"mode", "silent"}), QByteArray("ok"));
    Receiver receiver;
    auto released = ask("1");
    const auto waiting = ask("1");
    listen(waiting.data(), &receiver);
    QTRY_COMPARE(service->fetches(), 1);
    released.reset();
    bus.stop();
    QTRY_COMPARE(receiver.errors, 1);

    QVERIFY(bus.start());
    service.reset(new ScriptedService);
    QVERIFY(service->serve("1", "new"));
    QTRY_VERIFY(connector->isDBusInterfaceValid());
    const auto next = ask("1");
    QSignalSpy nextFinished(next.data(), &DBusPendingReply::dBusServiceFinished);
    QTRY_COMPARE(nextFinished.size(), 1);
    QCOMPARE(next->getReply(), QVariant("new"));
}

BUS_TEST_MAIN(ConnectorPendingReplyTest)

#include "ConnectorPendingReplyTest.moc"
