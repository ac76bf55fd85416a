// SPDX-License-Identifier: MIT
// What people are told of a failed call.
#include "BusErrors.h"

#include <QDBusError>
#include <QLoggingCategory>
#include <QtTest>

#include <dbus/dbus.h>

class BusErrorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void longExplanationsOfTheBusAreOneSentence_data();
    void longExplanationsOfTheBusAreOneSentence();
    void theirOwnWordsAreForThoseWhoAsk();
};

void BusErrorsTest::longExplanationsOfTheBusAreOneSentence_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("text");
    const QString errors = "org.freedesktop.DBus.Error.";
    QTest::newRow("no answer")
        << errors + "NoReply"
        << "Did not receive a reply. Possible causes include: the remote application did not send "
           "a reply, the message bus security policy blocked the reply, the reply timeout expired, "
           "or the network connection was broken."
        << "no answer came in time (org.freedesktop.DBus.Error.NoReply)";
    QTest::newRow("a service that ended")
        << errors + "NoReply"
        << "Message recipient disconnected from message bus without replying"
        << "it ended before it answered (org.freedesktop.DBus.Error.NoReply)";
    QTest::newRow("a service that nobody runs")
        << errors + "ServiceUnknown"
        << "The name com.orvalis.ProcessData.Pump was not provided by any .service files"
        << "nobody owns the service's name (org.freedesktop.DBus.Error.ServiceUnknown)";
    QTest::newRow("a name that nobody owns")
        << errors + "NameHasNoOwner"
        << "Could not get owner of name 'com.orvalis.ProcessData.Pump': no such name"
        << "nobody owns the service's name (org.freedesktop.DBus.Error.NameHasNoOwner)";
    QTest::newRow("refused by the policy")
        << errors + "AccessDenied"
        << "Rejected send message, 2 matched rules; type=\"method_call\", sender=\":1.3\" "
           "(uid=61003 pid=4711 comm=\"read-once\") interface=\"com.orvalis.ProcessDescription1\" "
           "member=\"GetProcessDataDescription\" error name=\"(unset)\" requested_reply=\"0\" "
           "destination=\"com.orvalis.ProcessData.Pump\" (uid=61001 pid=4710 comm=\"pump\")"
        << "the policy of the bus does not let this user send that "
           "(org.freedesktop.DBus.Error.AccessDenied)";
    QTest::newRow("refused by the service")
        << errors + "AccessDenied"
        << "only on Sundays"
        << "only on Sundays (org.freedesktop.DBus.Error.AccessDenied)";
    QTest::newRow("a service's own text that begins as the bus's")
        << QString("com.orvalis.Error.UnknownInstance") << "Rejected by the pump"
        << "Rejected by the pump (com.orvalis.Error.UnknownInstance)";
}

void BusErrorsTest::longExplanationsOfTheBusAreOneSentence()
{
    QFETCH(const QString, name);
    QFETCH(const QString, given);
    QFETCH(const QString, text);
    QCOMPARE(BusErrors::text(QDBusMessage::createError(name, given)), text);
    const WireMessage call = Wire::call("a.b", "/c", "d.e", "F");
    dbus_message_set_serial(call.get(), 1); // as one that was sent
    QCOMPARE(BusErrors::text(Wire::reply(call, BusAnswer::error(name, given))), text);
}

void BusErrorsTest::theirOwnWordsAreForThoseWhoAsk()
{
    static QStringList logged;
    const auto previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { logged.append(text); });
    const auto explain = [] {
        return BusErrors::reason("org.freedesktop.DBus.Error.NoReply",
                                 "Did not receive a reply. So");
    };
    const QString unasked = explain();
    const QStringList before = logged;
    QLoggingCategory::setFilterRules("processdata.bus.original.debug=true");
    const QString asked = explain();
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(previous);

    QCOMPARE(unasked, QString("no answer came in time"));
    QCOMPARE(asked, unasked);
    QCOMPARE(before, QStringList());
    QCOMPARE(logged,
             QStringList("org.freedesktop.DBus.Error.NoReply: Did not receive a reply. So"));
}

QTEST_GUILESS_MAIN(BusErrorsTest)
#include "BusErrorsTest.moc"
