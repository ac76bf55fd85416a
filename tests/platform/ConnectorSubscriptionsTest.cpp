// SPDX-License-Identifier: MIT
// In which order a client asks the bus daemon for what it wants to hear.
#include "BusTestMain.h"
#include "DBusProcessDescriptionConnector.h"
#include "PrivateBus.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

// What clients ask of the bus daemon, as a line each: "AddMatch rule", "GetNameOwner name".
QStringList callsIn(const QByteArray &output)
{
    static const QRegularExpression call("member=(\\w+)\n   string \"([^\"]*)\"");
    QStringList found;
    QRegularExpressionMatchIterator it = call.globalMatch(QString::fromUtf8(output));
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        found += match.captured(1) + " " + match.captured(2);
    }
    return found;
}

// Where the only call stands that matches; -1 when there is none or more than one.
int placeOf(const QStringList &calls, const QString &pattern)
{
    const QRegularExpression expression(pattern);
    const int place = calls.indexOf(expression);
    return place == calls.lastIndexOf(expression) ? place : -1;
}
}

class ConnectorSubscriptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }

    void ownersAreAskedForOnlyWhenTheirAnnouncementsAreHeard();

private:
    PrivateBus bus;
};

// In another order a service may appear in between: the client would count on its announcements,
// and the daemon would not have sent them.
void ConnectorSubscriptionsTest::ownersAreAskedForOnlyWhenTheirAnnouncementsAreHeard()
{
    ChildProcess monitor(
        "dbus-monitor",
        {"--address", bus.address(), "type='method_call',interface='org.freedesktop.DBus'"});
    // It says that it has lost its name: from then on it hears of everything.
    QVERIFY(monitor.start() && !monitor.waitForLineWith("NameLost").isNull());

    const auto connector = DBusProcessDescriptionConnector::createAndConnect("Pump", "Controller");
    QVERIFY(!connector.isNull());

    QVERIFY(!monitor.waitForLineWith("\"com.orvalis.ProcessData.Pump\"").isNull());
    const QStringList calls = callsIn(monitor.output());
    const QString all = calls.join('\n');
    const int description = placeOf(calls, "^AddMatch .*'ProcessDataDescriptionChanged'");
    const int property = placeOf(calls, "^AddMatch .*'PropertyChanged'");
    const int owners
        = placeOf(calls, "^AddMatch .*path='/org/freedesktop/DBus'.*'NameOwnerChanged'");
    const int question = placeOf(calls, "^GetNameOwner com.orvalis.ProcessData.Pump");
    QVERIFY2(description >= 0 && property >= 0, qPrintable(all));
    QVERIFY2(owners > description && owners > property, qPrintable(all));
    QVERIFY2(question > owners, qPrintable(all));
}

BUS_TEST_MAIN(ConnectorSubscriptionsTest)

#include "ConnectorSubscriptionsTest.moc"
