// SPDX-License-Identifier: MIT
// selector watch in scripts: conditions, time limits, charts, and how it ends.
#include "SystemTest.h"

#include <QTest>

class SelectorWatchTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aConditionThatHoldsAlreadyEndsAtOnce();
    void aConditionThatHoldsWithTheLastLineCounts();
    void aConditionIsWaitedFor();
    void aChangeIsWaitedFor();
    void theTimeLimitEndsWithItsOwnCode_data();
    void theTimeLimitEndsWithItsOwnCode();
    void aWrongConditionIsWrongUsage_data();
    void aWrongConditionIsWrongUsage();
    void changesOnlyLeavesOutTheBeginning();
    void anInterruptEndsCleanly();
    void aTerminationEndsWithTheStateOfTheSelectors();
    void aChartIsPrintedOnceWithoutATerminal();
    void selectorsWithoutALineDoNotCountAtTheEnd();
    void aRowHasAColumnForEachSelector();
    void smallChangesAreLeftOut();
    void anOldValueIsStale();

private:
    QStringList arguments(const QStringList &more) const
    {
        return QStringList{"watch", "--interval", "20"} + more + urls();
    }
    QStringList urls() const
    {
        return {selectorUrl(module, "speed"), "on=" + selectorUrl(module, "running")};
    }

    QScopedPointer<PublisherProcess> publisher;
};

void SelectorWatchTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(
        module,
        description({leaf("speed", "float64", {{"unit", "1/min"}}), leaf("running", "bool")})));
    VERIFY_COMMAND(publisher->publish("speed", 900.5));
    VERIFY_COMMAND(publisher->publish("running", true));
}

void SelectorWatchTest::cleanup()
{
    publisher.reset();
    SystemTest::cleanup();
}

void SelectorWatchTest::aConditionThatHoldsAlreadyEndsAtOnce()
{
    ChildProcess client(SELECTOR, arguments({"--until", "speed>900 && on==true"}));
    VERIFY_RUN(client, 0);
    QCOMPARE(client.output().count('\n'), 3);
    QCOMPARE(client.errors(), QByteArray());
}

void SelectorWatchTest::aConditionThatHoldsWithTheLastLineCounts()
{
    ChildProcess client(SELECTOR, arguments({"--until", "on==true", "--count", "2"}));
    QVERIFY(client.run());

    QVERIFY2(client.exitCode() == 0 && client.errors().isEmpty(), client.report());
}

void SelectorWatchTest::aConditionIsWaitedFor()
{
    ChildProcess client(SELECTOR, arguments({"--until", "speed>1000", "--timeout", "30"}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("900.5").isNull(), client.report().constData());
    QVERIFY2(!client.waitForLineWith("true").isNull(), client.report().constData());
    QVERIFY(client.isRunning());

    VERIFY_COMMAND(publisher->publish("speed", 1000));
    QVERIFY2(!client.waitForLineWith(" 1000 ").isNull(), client.report().constData());
    QVERIFY(client.isRunning());
    VERIFY_COMMAND(publisher->publish("speed", 1000.25));

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0, client.report().constData());
    QVERIFY2(client.output().contains("1000.25"), client.report().constData());
}

void SelectorWatchTest::aChangeIsWaitedFor()
{
    ChildProcess client(SELECTOR, arguments({"--until", "changed(on)", "--timeout", "30"}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("900.5").isNull(), client.report().constData());
    VERIFY_COMMAND(publisher->publish("speed", 901));
    QVERIFY2(!client.waitForLineWith(" 901 ").isNull(), client.report().constData());
    QVERIFY(client.isRunning());

    VERIFY_COMMAND(publisher->publish("running", false));

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0, client.report().constData());
}

void SelectorWatchTest::theTimeLimitEndsWithItsOwnCode_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("before the condition held")
        << QStringList{"--until", "speed>1000"} << 4
        << QByteArray("selector: time is up after 2 lines; never true: speed>1000\n");
    QTest::newRow("a comparison without a value never holds, nor does its opposite")
        << QStringList{"--until", "on=='x' || on!='x'"} << 4
        << QByteArray("selector: time is up after 2 lines; never true: on=='x' || on!='x'\n");
    QTest::newRow("before the lines were complete")
        << QStringList{"--count", "3"} << 4
        << QByteArray("selector: time is up after 2 of 3 lines\n");
    QTest::newRow("when nothing else was wanted") << QStringList{} << 0 << QByteArray();
}

void SelectorWatchTest::theTimeLimitEndsWithItsOwnCode()
{
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, reason);

    ChildProcess client(SELECTOR, arguments(options + QStringList{"--timeout", "0.5"}));
    VERIFY_RUN(client, exitCode);
    QCOMPARE(client.errors(), reason);
}

void SelectorWatchTest::aWrongConditionIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no such name") << QStringList{"--until", "spede>5"}
                                  << QByteArray("place 1: no selector is called \"spede\"");
    QTest::newRow("an empty condition")
        << QStringList{"--until", ""} << QByteArray("place 1: a selector or a value is missing");
    QTest::newRow("a chart as JSON")
        << QStringList{"--plot", "--format", "json"} << QByteArray("--plot draws for people");
    QTest::newRow("a table in place as CSV")
        << QStringList{"--table", "--format", "csv"} << QByteArray("--table draws for people");
    QTest::newRow("two views") << QStringList{"--table", "--wide"}
                               << QByteArray("--table has no --wide.");
    QTest::newRow("a deadband of rows")
        << QStringList{"--wide", "--deadband", "1"} << QByteArray("--wide has no --deadband.");
    QTest::newRow("ticks without rows")
        << QStringList{"--every", "100"} << QByteArray("--every goes with --wide");
    QTest::newRow("a deadband that is not a number")
        << QStringList{"--deadband", "x"} << QByteArray("--deadband must be a number such as 0.5");
    QTest::newRow("a share of a range that the leaf does not have")
        << QStringList{"--deadband", "0.5%"} << QByteArray("/speed has no minimum and maximum");
    QTest::newRow("a time compared with a value")
        << QStringList{"--until", "speed>5s"} << QByteArray("a time can be compared with an age()");
}

void SelectorWatchTest::aWrongConditionIsWrongUsage()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, reason);

    ChildProcess client(SELECTOR, arguments(options));
    VERIFY_RUN(client, 2);
    QVERIFY2(client.errors().contains(reason), client.report().constData());
    QCOMPARE(client.output(), QByteArray());
}

void SelectorWatchTest::changesOnlyLeavesOutTheBeginning()
{
    ChildProcess client(SELECTOR, arguments({"--changes-only", "--format", "csv", "--count", "1"}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("event,").isNull(), client.report().constData());
    // The first look may come after this value; then the next one is the change.
    for (int i = 0; i < 10000 && client.isRunning(); ++i) {
        VERIFY_COMMAND(publisher->publish("speed", 2000 + i));
    }
    QVERIFY(client.waitForEnd());

    QVERIFY2(client.exitCode() == 0, client.report().constData());
    QCOMPARE(client.output().count('\n'), 2);
    QVERIFY2(!client.output().contains(",true,"), client.report().constData());
}

void SelectorWatchTest::anInterruptEndsCleanly()
{
    ChildProcess client(SELECTOR, arguments({"--until", "speed>1000"}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("true").isNull(), client.report().constData());

    client.interrupt();

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 130, client.report().constData());
    QCOMPARE(client.errors(), QByteArray());
    QVERIFY(client.output().endsWith('\n'));
}

void SelectorWatchTest::aTerminationEndsWithTheStateOfTheSelectors()
{
    ChildProcess client(SELECTOR, arguments({}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("true").isNull(), client.report().constData());

    client.terminate();

    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0, client.report().constData());
}

void SelectorWatchTest::aChartIsPrintedOnceWithoutATerminal()
{
    ChildProcess client(SELECTOR, arguments({"--plot", "--count", "3"}));
    VERIFY_RUN(client, 0);
    QVERIFY2(client.output().startsWith("speed  900.5 1/min\n"), client.report().constData());
    QVERIFY2(client.output().contains("\non  true\n"), client.report().constData());
    QCOMPARE(client.output().count("***\n"), 2);
    QCOMPARE(client.output().count('\n'), 21); // with the axis
    QVERIFY2(client.output().endsWith("now|\n"), client.report().constData());
    QVERIFY2(!client.output().contains('\x1b'), client.report().constData());
}

void SelectorWatchTest::selectorsWithoutALineDoNotCountAtTheEnd()
{
    ChildProcess client(SELECTOR, arguments({"--count", "1"}));
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 0 && client.errors().isEmpty(), client.report());
}

void SelectorWatchTest::aRowHasAColumnForEachSelector()
{
    const QStringList wide
        = QStringList{"watch", "--wide", "--every", "20", "--count", "2"} + urls();
    ChildProcess csv(SELECTOR, wide + QStringList{"--format", "csv"});
    VERIFY_RUN(csv, 0);
    const QList<QByteArray> lines = csv.output().split('\n');
    QCOMPARE(lines.at(0), "time," + selectorUrl(module, "speed").toUtf8() + ",on");
    QVERIFY2(lines.at(1).endsWith(",900.5,true"), csv.report());
    QVERIFY2(lines.at(2).endsWith(",900.5,true"), csv.report());
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines.at(1) != lines.at(2)); // each has its own tick

    ChildProcess json(SELECTOR,
                      wide + QStringList{"--format", "json", selectorUrl(module, "none")});
    VERIFY_RUN(json, 1);
    QVERIFY2(json.output().contains("\"values\":[900.5,true,null]"), json.report());
    QVERIFY2(json.errors().contains("no such leaf"), json.report());
}

void SelectorWatchTest::smallChangesAreLeftOut()
{
    ChildProcess client(SELECTOR, arguments({"--deadband", "1.5", "--format", "csv"}));
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith(",true,").isNull(), client.report().constData());
    VERIFY_COMMAND(publisher->publish("speed", 902));
    VERIFY_COMMAND(publisher->publish("running", false)); // a later look than the one at 902
    QVERIFY2(!client.waitForLineWith(",false,").isNull(), client.report().constData());
    VERIFY_COMMAND(publisher->publish("speed", 902.25));
    QVERIFY2(!client.waitForLineWith(",902.25,").isNull(), client.report().constData());
    QVERIFY2(!client.output().contains(",902,"), client.report().constData());
}

void SelectorWatchTest::anOldValueIsStale()
{
    ChildProcess watch(SELECTOR,
                       arguments({"--max-age", "0.2", "--format", "json", "--timeout", "60",
                                  "--until", "age(speed)>1.5s && age(on)>0.2s"}));
    QVERIFY(watch.start());
    QVERIFY2(!watch.waitForLineWith("\"code\":\"stale\"").isNull(), watch.report().constData());
    QVERIFY(watch.waitForEnd());
    QVERIFY2(watch.exitCode() == 0, watch.report().constData());

    ChildProcess read(SELECTOR, {"read", "--max-age", "1", selectorUrl(module, "speed")});
    VERIFY_RUN(read, 1);
    QVERIFY2(read.output().contains(" 900.5 ") && read.output().contains("older than 1 s"),
             read.report());
    ChildProcess fresh(SELECTOR, {"read", "--max-age", "3600", selectorUrl(module, "speed")});
    VERIFY_RUN(fresh, 0);
}

QTEST_GUILESS_MAIN(SelectorWatchTest)
#include "SelectorWatchTest.moc"
