// SPDX-License-Identifier: MIT
// A client that stands still while its bus daemon has to drop what is meant for it reads again.
#include "BusTestMain.h"
#include "SystemTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>

class StoppedClientTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void itReadsAgainAfterItsPublisherRestarted_data() { addTraffic(); }
    void itReadsAgainAfterItsPublisherRestarted();
    void itReadsAgainAfterItsDescriptionWasReplaced_data() { addTraffic(); }
    void itReadsAgainAfterItsDescriptionWasReplaced();
    void itHearsOfAChangedPropertyOfASourceThatLives_data() { addTraffic(); }
    void itHearsOfAChangedPropertyOfASourceThatLives();

private:
    static void addTraffic();
    bool startBus();
    void fillQueues();
};

namespace {

const QJsonObject pump = description({leaf("speed", "float64")});

// Sends announcements of nobody's module, and returns when the daemon has passed them on or dropped
// them: nothing, or what went wrong.
QString announce(const QString &address, int count, int size)
{
    static int number = 0;
    const QString name = QString("stranger-%1").arg(++number);
    QString reason;
    {
        QDBusConnection stranger = QDBusConnection::connectToBus(address, name);
        QDBusMessage signal = QDBusMessage::createSignal("/com/orvalis/ProcessData/Controller",
                                                         "com.orvalis.ProcessDescription1",
                                                         "ProcessDataDescriptionChanged");
        signal << QString(size, 'x');
        for (int i = 0; i < count; ++i) {
            stranger.send(signal);
        }
        const QDBusMessage question = QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames");
        reason = stranger.call(question).errorMessage();
    }
    QDBusConnection::disconnectFromBus(name);
    return reason;
}

} // namespace

void StoppedClientTest::addTraffic()
{
    QTest::addColumn<bool>("byStranger");
    QTest::newRow("beside a stranger's announcements of 33 MB") << true;
    QTest::newRow("beside honest announcements") << false;
}

// As a bus daemon of the system has it, or so little that honest announcements soon exceed it.
bool StoppedClientTest::startBus()
{
    QFETCH(const bool, byStranger);
    bus->stop();
    bus->setLimit("max_outgoing_bytes", byStranger ? 133169152 : 20000);
    return bus->start();
}

void StoppedClientTest::fillQueues()
{
    QFETCH(const bool, byStranger);
    if (byStranger) {
        QCOMPARE(announce(bus->address(), 8, 33000000), QString());
        return;
    }
    PublisherProcess other;
    VERIFY_COMMAND(other.serve(module + "Other", pump));
    for (int i = 0; i < 1500; ++i) {
        VERIFY_COMMAND(other.replaceProperties(pump));
    }
}

void StoppedClientTest::itReadsAgainAfterItsPublisherRestarted()
{
    QVERIFY(startBus());
    PublisherProcess before;
    VERIFY_COMMAND(before.serve(module, pump));
    VERIFY_COMMAND(before.publish("speed", 1.0));
    ChildProcess reader(INTEGRATION_READER, {selectorUrl(module, "speed")});
    QVERIFY(reader.start());
    QVERIFY2(!reader.waitForLineWith("0 1").isEmpty(), reader.report());

    reader.suspend();
    fillQueues();
    before.process().kill();
    PublisherProcess after;
    VERIFY_COMMAND(after.serve(module, pump));
    VERIFY_COMMAND(after.publish("speed", 2.0));
    reader.resume();

    QVERIFY2(!reader.waitForLineWith("0 2").isEmpty(), reader.report());
    VERIFY_COMMAND(after.publish("speed", 3.0));
    QVERIFY2(!reader.waitForLineWith("0 3").isEmpty(), reader.report());
}

void StoppedClientTest::itReadsAgainAfterItsDescriptionWasReplaced()
{
    QVERIFY(startBus());
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 1.0));
    ChildProcess reader(INTEGRATION_READER, {selectorUrl(module, "speed")});
    QVERIFY(reader.start());
    QVERIFY2(!reader.waitForLineWith("0 1").isEmpty(), reader.report());

    reader.suspend();
    fillQueues();
    VERIFY_COMMAND(publisher.replaceDescription(
        description({leaf("direction", "int8"), leaf("speed", "float64")})));
    VERIFY_COMMAND(publisher.publish("speed", 2.0));
    reader.resume();

    QVERIFY2(!reader.waitForLineWith("0 2").isEmpty(), reader.report());
}

void StoppedClientTest::itHearsOfAChangedPropertyOfASourceThatLives()
{
    QVERIFY(startBus());
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 1.0));
    ChildProcess reader(INTEGRATION_READER, {selectorUrl(module, "speed"), "unit"});
    QVERIFY(reader.start());
    QVERIFY2(!reader.waitForLineWith("0 1").isEmpty(), reader.report());

    reader.suspend();
    fillQueues();
    VERIFY_COMMAND(
        publisher.replaceProperties(description({leaf("speed", "float64", {{"unit", "rpm"}})})));
    reader.resume();

    QVERIFY2(!reader.waitForLineWith("unit rpm").isEmpty(), reader.report());
}

BUS_TEST_MAIN(StoppedClientTest)

#include "StoppedClientTest.moc"
