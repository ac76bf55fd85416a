// SPDX-License-Identifier: MIT
// selector watch on a real terminal: the table and the charts, typed keys, resizing, stops and ends.
#include "SystemTest.h"
#include "TestTerminal.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class SelectorTerminalTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void rowsStayInPlaceAndChangesStandOut();
    void aFilterIsTyped();
    void rowsThatDoNotFitAreCountedAfterAResize();
    void aStoppedTableGivesTheTerminalBack();
    void aStoppedTableCanBeEnded();
    void aTableInTheBackgroundWaitsForItsTurn();
    void aTableThatNobodyCanLetGoOnIsNotStopped();
    void everyEndGivesTheTerminalBack_data();
    void everyEndGivesTheTerminalBack();
    void aCrashGivesTheTerminalBack();
    void chartsStayInPlaceOnANarrowTerminal();
    void aTableIsPrintedOnceWithoutATerminal();
    void tablesFitTheTerminal();
    void withoutATableReasonsAreSaid();

private:
    // A shell that edits no lines leaves the terminal as it finds it, and says how that is.
    QString watch(const QString &view) const
    {
        return QString(
                   "sh -c 'trap : INT QUIT; %1 watch --interval 20 %2 %3; echo end $?; stty -a'")
            .arg(SELECTOR, view, urls().join(' '));
    }
    QStringList urls() const
    {
        return {selectorUrl(module, "speed"), selectorUrl(module, "running")};
    }

    QScopedPointer<PublisherProcess> publisher;
    QScopedPointer<TestTerminal> terminal;
};

void SelectorTerminalTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(
        module,
        description({leaf("speed", "float64", {{"unit", "1/min"}}), leaf("running", "bool")})));
    VERIFY_COMMAND(publisher->publish("speed", 900.5));
    VERIFY_COMMAND(publisher->publish("running", true));
    terminal.reset(new TestTerminal);
    VERIFY_COMMAND(terminal->start(80, 24));
}

void SelectorTerminalTest::cleanup()
{
    terminal.reset();
    publisher.reset();
    SystemTest::cleanup();
}

void SelectorTerminalTest::rowsStayInPlaceAndChangesStandOut()
{
    VERIFY_COMMAND(terminal->run(watch("--table")));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    const QStringList before = terminal->lines();
    QCOMPARE(before.at(0), QString("processdata://%1/Controller/1/…").arg(module));
    QVERIFY2(before.at(2).startsWith("speed    900.5  1/min  NoError"), qPrintable(before.at(2)));
    QVERIFY2(before.at(3).startsWith("running   true"), qPrintable(before.at(3)));
    QCOMPARE(before.size(), 24);
    QCOMPARE(terminal->state("cursor_flag"), QByteArray("0"));

    VERIFY_COMMAND(publisher->publish("speed", 901.25));

    VERIFY_COMMAND(terminal->waitFor(
        [](const QStringList &seen) {
            return seen.value(2).contains(QRegularExpression("\x1b\\[[0-9;]*7m901\\.25"));
        },
        true));
    VERIFY_COMMAND(terminal->waitFor(
        [](const QStringList &seen) {
            return seen.value(2).contains("901.25") && !seen.value(2).contains("7m");
        },
        true));
    const QStringList after = terminal->lines();
    QCOMPARE(after.filter("speed").size(), 1);
    QVERIFY(after.at(3).startsWith("running "));
}

void SelectorTerminalTest::aFilterIsTyped()
{
    VERIFY_COMMAND(terminal->run(watch("--table")));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    VERIFY_COMMAND(terminal->type({"/", "q", "BSpace", "RUN"}));
    VERIFY_COMMAND(terminal->waitForText("/RUN_"));
    QVERIFY(terminal->lines().filter("speed ").isEmpty());
    QCOMPARE(terminal->lines().filter("running ").size(), 1);

    VERIFY_COMMAND(terminal->type({"Enter"}));
    VERIFY_COMMAND(terminal->waitForText("1 of 2 rows have \"RUN\""));
    VERIFY_COMMAND(terminal->type({"Up", "Escape"}));
    VERIFY_COMMAND(terminal->waitForText("speed "));
    QCOMPARE(terminal->lines().last(), QString("q quits, / filters"));
}

void SelectorTerminalTest::rowsThatDoNotFitAreCountedAfterAResize()
{
    VERIFY_COMMAND(terminal->run(watch("--table --interval 3600000")));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    VERIFY_COMMAND(terminal->resize(60, 4));
    VERIFY_COMMAND(terminal->waitForText("1 of 2 rows do not fit"));
    VERIFY_COMMAND(terminal->resize(100, 10));
    VERIFY_COMMAND(terminal->waitFor([](const QStringList &seen) {
        return seen.size() == 10 && seen.at(9) == "q quits, / filters"
            && seen.at(3).startsWith("running ");
    }));
}

void SelectorTerminalTest::aStoppedTableGivesTheTerminalBack()
{
    VERIFY_COMMAND(
        terminal->run(QString("%1 watch --table %2; echo end $?").arg(SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    for (int i = 0; i < 2; ++i) {
        VERIFY_COMMAND(terminal->type({"C-z"}));
        VERIFY_COMMAND(terminal->waitForText("Stopped"));
        QCOMPARE(terminal->state("alternate_on"), QByteArray("0"));
        QCOMPARE(terminal->state("cursor_flag"), QByteArray("1"));

        VERIFY_COMMAND(terminal->run("fg"));
        VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
        QVERIFY(!terminal->lines().filter("running ").isEmpty());
    }
    VERIFY_COMMAND(terminal->type({"C-c"}));
    VERIFY_COMMAND(terminal->waitFor(
        [](const QStringList &seen) { return seen.last().startsWith("prompt>"); }));
    QCOMPARE(terminal->state("cursor_flag"), QByteArray("1"));
}

void SelectorTerminalTest::aStoppedTableCanBeEnded()
{
    VERIFY_COMMAND(terminal->run(QString("%1 watch --table %2").arg(SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    VERIFY_COMMAND(terminal->type({"C-z"}));
    VERIFY_COMMAND(terminal->waitForText("Stopped"));

    VERIFY_COMMAND(terminal->run("kill %1; while kill -0 %1; do :; done; echo 'has ''ended'"));

    VERIFY_COMMAND(terminal->waitForText("has ended"));
    QCOMPARE(terminal->state("alternate_on"), QByteArray("0"));
    QVERIFY(terminal->lines().filter("q quits").isEmpty());
}

void SelectorTerminalTest::aTableInTheBackgroundWaitsForItsTurn()
{
    VERIFY_COMMAND(
        terminal->run(QString("%1 watch --table %2 < /dev/null").arg(SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    VERIFY_COMMAND(terminal->type({"C-z"}));
    VERIFY_COMMAND(terminal->waitForText("Stopped"));

    VERIFY_COMMAND(terminal->run("bg; until jobs -s | grep .; do :; done; echo 'it ''waits'"));

    VERIFY_COMMAND(terminal->waitForText("it waits"));
    QCOMPARE(terminal->state("alternate_on"), QByteArray("0"));
    VERIFY_COMMAND(terminal->run("fg"));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
}

// In the place of the shell it is in a process group that has lost whoever could control its jobs.
void SelectorTerminalTest::aTableThatNobodyCanLetGoOnIsNotStopped()
{
    VERIFY_COMMAND(
        terminal->run(QString("exec %1 watch --table %2").arg(SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    VERIFY_COMMAND(terminal->type({"C-z", "/", "RUN"}));
    VERIFY_COMMAND(terminal->waitForText("/RUN_"));
    QCOMPARE(terminal->state("alternate_on"), QByteArray("1"));
}

void SelectorTerminalTest::everyEndGivesTheTerminalBack_data()
{
    QTest::addColumn<QString>("view");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("end");
    const QString table = "q quits, / filters";
    QTest::newRow("a table by q") << "--table" << table << "q"
                                  << "end 0";
    QTest::newRow("a table by Ctrl-C") << "--table" << table << "C-c"
                                       << "end 130";
    QTest::newRow("a table by Ctrl-\\") << "--table" << table << "C-\\"
                                        << "end 131";
    QTest::newRow("a chart by q") << "--plot"
                                  << "now"
                                  << "q"
                                  << "end 0";
    QTest::newRow("a chart by Ctrl-C") << "--plot"
                                       << "now"
                                       << "C-c"
                                       << "end 130";
}

void SelectorTerminalTest::everyEndGivesTheTerminalBack()
{
    QFETCH(const QString, view);
    QFETCH(const QString, shown);
    QFETCH(const QString, key);
    QFETCH(const QString, end);
    VERIFY_COMMAND(terminal->run(watch(view)));
    VERIFY_COMMAND(terminal->waitForText(shown));
    QVERIFY(terminal->lines().filter(QRegularExpression("^end ")).isEmpty());

    VERIFY_COMMAND(terminal->type({key}));

    VERIFY_COMMAND(terminal->waitFor([&](const QStringList &seen) {
        return !seen.filter(QRegularExpression("\\bicanon\\b")).isEmpty();
    }));
    const QString all = terminal->lines().join('\n');
    QVERIFY2(all.contains(end), qPrintable(all));
    QVERIFY2(!all.contains("-icanon") && !all.contains("-echo "), qPrintable(all));
    QCOMPARE(terminal->state("alternate_on"), QByteArray("0"));
    QCOMPARE(terminal->state("cursor_flag"), QByteArray("1"));
}

void SelectorTerminalTest::aCrashGivesTheTerminalBack()
{
    const QTemporaryDir folder;
    VERIFY_COMMAND(terminal->run(
        QString(
            "sh -c 'sh -c \"echo \\$\\$ > %1; exec %2 watch --table %3\"; echo end $?; stty -a'")
            .arg(folder.filePath("pid"), SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("q quits, / filters"));
    QFile file(folder.filePath("pid"));
    QVERIFY(file.open(QIODevice::ReadOnly));

    QCOMPARE(::kill(file.readAll().trimmed().toInt(), SIGABRT), 0);

    VERIFY_COMMAND(terminal->waitFor([](const QStringList &seen) {
        return !seen.filter(QRegularExpression("\\bicanon\\b")).isEmpty();
    }));
    const QString all = terminal->lines().join('\n');
    QVERIFY2(all.contains("end 134") && !all.contains("-icanon"), qPrintable(all));
    QCOMPARE(terminal->state("alternate_on"), QByteArray("0"));
    QCOMPARE(terminal->state("cursor_flag"), QByteArray("1"));
}

void SelectorTerminalTest::chartsStayInPlaceOnANarrowTerminal()
{
    VERIFY_COMMAND(terminal->resize(12, 24)); // one column less than a chart takes
    VERIFY_COMMAND(terminal->run("clear; " + watch("--plot")));
    VERIFY_COMMAND(terminal->waitForText("speed  900"));
    VERIFY_COMMAND(publisher->publish("speed", 5));
    VERIFY_COMMAND(terminal->waitForText("speed  5"));
    QVERIFY2(terminal->lines().filter(QRegularExpression("^speed  ")).size() == 1,
             qPrintable(terminal->lines().join('\n')));
}

void SelectorTerminalTest::aTableIsPrintedOnceWithoutATerminal()
{
    ChildProcess client(
        SELECTOR, QStringList{"watch", "--table", "--count", "2", "--interval", "20"} + urls());
    VERIFY_RUN(client, 0);
    QCOMPARE(client.output().count('\n'), 3);
    QVERIFY2(client.output().startsWith("URL ") && client.output().contains("/speed"),
             client.report());
    QVERIFY2(!client.output().contains('\x1b'), client.report());
}

void SelectorTerminalTest::tablesFitTheTerminal()
{
    VERIFY_COMMAND(terminal->resize(60, 24));
    VERIFY_COMMAND(terminal->run(QString("clear; %1 read %2").arg(SELECTOR, urls().join(' '))));
    VERIFY_COMMAND(terminal->waitForText("running "));
    const QStringList lines = terminal->lines();
    QCOMPARE(lines.at(0), QString("processdata://%1/Controller/1/…").arg(module));
    QVERIFY2(lines.at(2).startsWith("speed    900.5  1/min  NoError"),
             qPrintable(lines.join('\n')));
}

void SelectorTerminalTest::withoutATableReasonsAreSaid()
{
    const QString none = selectorUrl(module, "none");
    VERIFY_COMMAND(terminal->run(QString("clear; %1 read -q %2; echo end $?").arg(SELECTOR, none)));
    VERIFY_COMMAND(terminal->waitForText("end 1"));
    QCOMPARE(terminal->lines().filter("selector: " + none + ": ").size(), 1);
}

QTEST_GUILESS_MAIN(SelectorTerminalTest)
#include "SelectorTerminalTest.moc"
