// SPDX-License-Identifier: MIT
// selector watch beside what is not there, not there yet, or does not answer.
#include "SelectorSystemTest.h"

#include <QTest>

class SelectorWatchPresenceTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void whatIsNotThereIsNotFound_data();
    void whatIsNotThereIsNotFound();
    void whatComesUpLaterIsFound();
    void hungServicesDoNotHoldTheEndUp_data();
    void hungServicesDoNotHoldTheEndUp();
};

void SelectorWatchPresenceTest::init()
{
    SystemTest::init();
    bringUp({leaf("speed", "float64", {{"unit", "1/min"}}), leaf("running", "bool")});
    VERIFY_COMMAND(publisher->publish("speed", 900.5));
}

void SelectorWatchPresenceTest::whatIsNotThereIsNotFound_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("no such service") << "processdata://Nowhere/Pump/1/x";
    QTest::newRow("no such instance") << "processdata://MODULE/Controller/2/speed";
    QTest::newRow("no such leaf") << "processdata://MODULE/Controller/1/none";
}

// The library signals each of them once, when the system has finished starting up.
void SelectorWatchPresenceTest::whatIsNotThereIsNotFound()
{
    QFETCH(QString, url);
    ChildProcess client(SELECTOR,
                        {"watch", "-j", "--until", "changed(#1) || #0==5", "--timeout", "60",
                         selectorUrl(module, "speed"), url.replace("MODULE", module)});
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("\"index\":1").isNull(), client.report());

    // An announcement that comes after that signal, and then the end.
    VERIFY_COMMAND(publisher->replaceProperties(
        description({leaf("speed", "float64", {{"unit", "Hz"}}), leaf("running", "bool")})));
    QVERIFY2(!client.waitForLineWith("propertyChanged").isNull(), client.report());
    QVERIFY2(client.isRunning(), client.report());
    VERIFY_COMMAND(publisher->publish("speed", 5));

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0 && !client.output().contains("found"), client.report());
}

void SelectorWatchPresenceTest::whatComesUpLaterIsFound()
{
    const QString later = module + "b";
    ChildProcess client(
        SELECTOR, {"watch", "--until", "changed", "--timeout", "60", selectorUrl(later, "speed")});
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("is not running").isNull(), client.report());
    PublisherProcess other;
    VERIFY_COMMAND(other.serve(later, description({leaf("speed", "float64")})));

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0 && client.output().contains("0 found"), client.report());
}

void SelectorWatchPresenceTest::hungServicesDoNotHoldTheEndUp_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("nothing else was wanted") << QStringList() << QByteArray();
    QTest::newRow("a condition") << QStringList{"--until", "#0>1"}
                                 << QByteArray("never true: #0>1\n");
    QTest::newRow("lines") << QStringList{"--count", "4"}
                           << QByteArray("time is up after 3 of 4 lines\n");
}

// Each call may take longer than this test waits.
void SelectorWatchPresenceTest::hungServicesDoNotHoldTheEndUp()
{
    QFETCH(const QStringList, options);
    QFETCH(const QByteArray, reason);
    PublisherProcess others[2];
    QStringList urls{selectorUrl(module, "speed")};
    for (int i = 0; i < 2; ++i) {
        const QString name = QString("%1x%2").arg(module).arg(i);
        VERIFY_COMMAND(others[i].serve(name, description({leaf("speed", "float64")})));
        others[i].process().suspend();
        urls += selectorUrl(name, "speed");
    }
    publisher->process().suspend();

    ChildProcess client(
        "env",
        QStringList{"PROCESSDATA_DBUS_TIMEOUT_MS=60000", SELECTOR, "watch", "-j", "--timeout", "1"}
            + options + urls);
    QVERIFY(client.run());

    QVERIFY2(client.exitCode() == 4 && client.errors().endsWith(reason), client.report());
    QVERIFY2(client.output().count("\"code\":\"timeLimit\"") == 3, client.report());
}

QTEST_GUILESS_MAIN(SelectorWatchPresenceTest)
#include "SelectorWatchPresenceTest.moc"
