// SPDX-License-Identifier: MIT
// What scripts and terminals ask for: values only, no header, no colour, a clean end by SIGINT.
#include "Files.h"
#include "SelectorSystemTest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class SelectorScriptTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void quietPrintsValuesAndNothingElse_data();
    void quietPrintsValuesAndNothingElse();
    void quietWatchPrintsEachNewValue();
    void noLegendLeavesOutTheHeader_data();
    void noLegendLeavesOutTheHeader();
    void aTerminalGetsColourUnlessNoColorIsSet();
    void interruptEndsEveryCommandThatWaits_data();
    void interruptEndsEveryCommandThatWaits();
    void otherSignalsEndWhatWaitsAsShellsReportThem_data();
    void otherSignalsEndWhatWaitsAsShellsReportThem();
    void anInterruptThatTheParentSwitchedOffStaysOff();
    void whatAnOptionDoesNotKnowIsWrongUsage_data();
    void whatAnOptionDoesNotKnowIsWrongUsage();

private:
    static QByteArray onTerminal(const QByteArray &command);
};

namespace {

const QString speedUrl("processdata://MODULE/Controller/1/speed");
const QString nameUrl("processdata://MODULE/Controller/1/name");
const QString noneUrl("processdata://MODULE/Controller/1/none");

// Whether a process has taken a signal into its own hands.
bool catches(int signalNumber, qint64 pid)
{
    const quint64 caught = statusOf(pid, "SigCgt").toULongLong(nullptr, 16);
    return (caught >> (signalNumber - 1) & 1) != 0; // bit 0 is signal 1
}

} // namespace

void SelectorScriptTest::init()
{
    SystemTest::init();
    bringUp({leaf("speed", "float64", {{"unit", "1/min"}}),
             leaf("name", "string", {{"capacity", 32}})});
    VERIFY_COMMAND(publisher->publish("speed", 0.1));
    VERIFY_COMMAND(publisher->publish("name", "two\nlines, one \"value\""));
}

void SelectorScriptTest::quietPrintsValuesAndNothingElse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("read") << QStringList{"read", "-q", nameUrl, noneUrl, speedUrl}
                          << "two\\nlines, one \"value\"\n\n0.1\n"
                          << 1;
    QTest::newRow("read a deactivated one")
        << QStringList{"read", "--quiet", speedUrl + "?deactivated", speedUrl} << "\n0.1\n"
        << 0;
    QTest::newRow("properties") << QStringList{"properties", "-q",    "--property", "type",
                                               speedUrl,     noneUrl, nameUrl}
                                << "float64\n\nstring\n"
                                << 1;
    QTest::newRow("modules") << QStringList{"modules", "-q"} << "MODULE\n" << 0;
    QTest::newRow("browse the system") << QStringList{"browse", "-q"} << "MODULE\n" << 0;
    QTest::newRow("browse a module")
        << QStringList{"browse", "-q", "MODULE"} << "MODULE/Controller/1\n"
        << 0;
    QTest::newRow("browse leaves")
        << QStringList{"browse", "-q", "MODULE/Controller/1"}
        << "processdata://MODULE/Controller/1/speed\nprocessdata://MODULE/Controller/1/name\n"
        << 0;
    QTest::newRow("browse what is not there")
        << QStringList{"browse", "-q", "MODULE/Controller/2"} << "" << 1;
}

void SelectorScriptTest::quietPrintsValuesAndNothingElse()
{
    QFETCH(const QStringList, arguments);
    QFETCH(QString, output);
    QFETCH(const int, exitCode);
    // The module registers a moment after its service is there.
    const QByteArray wanted = output.replace("MODULE", module).toUtf8();
    const auto prints = [&](QByteArray &report) {
        ChildProcess client(SELECTOR, filledIn(arguments));
        const bool same = client.run() && client.output() == wanted && client.exitCode() == exitCode
            && client.errors().isEmpty() == (exitCode == 0);
        report = client.report();
        return same;
    };
    QByteArray report;
    QTRY_VERIFY2_WITH_TIMEOUT(prints(report), report.constData(), 20000);
}

void SelectorScriptTest::quietWatchPrintsEachNewValue()
{
    ChildProcess client(SELECTOR, {"watch", "-q", "--count", "3", selectorUrl(module, "speed")});
    QVERIFY(client.start());
    QCOMPARE(client.nextLine(), QByteArray("0.1"));
    VERIFY_COMMAND(publisher->replaceProperties(description(
        {leaf("speed", "float64", {{"unit", "Hz"}}), leaf("name", "string", {{"capacity", 32}})})));
    VERIFY_COMMAND(publisher->publish("speed", 2));
    QCOMPARE(client.nextLine(), QByteArray("2"));
    VERIFY_COMMAND(publisher->publish("speed", 3));
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0 && client.output() == "0.1\n2\n3\n", client.report());
}

void SelectorScriptTest::noLegendLeavesOutTheHeader_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("begin");
    QTest::newRow("read a table") << QStringList{"read", "--no-legend", speedUrl} << speedUrl;
    QTest::newRow("read csv") << QStringList{"read", "--no-legend", "--format", "csv", speedUrl}
                              << speedUrl + ",0.1,";
    QTest::newRow("explain") << QStringList{"explain", "--no-legend", speedUrl} << "text ";
    QTest::newRow("doctor") << QStringList{"doctor", "--no-legend", "MODULE"} << "ok ";
    QTest::newRow("browse") << QStringList{"browse", "--no-legend", "MODULE"}
                            << "MODULE/Controller/1 ";
    QTest::newRow("watch") << QStringList{"watch",   "--no-legend", "--format", "csv",
                                          "--count", "1",           speedUrl}
                           << "value,";
}

void SelectorScriptTest::noLegendLeavesOutTheHeader()
{
    QFETCH(const QStringList, arguments);
    QFETCH(QString, begin);
    ChildProcess client(SELECTOR, filledIn(arguments));
    QVERIFY(client.run());
    QVERIFY2(client.output().startsWith(begin.replace("MODULE", module).toUtf8()), client.report());
}

// What a command prints on a terminal that can show colour.
QByteArray SelectorScriptTest::onTerminal(const QByteArray &command)
{
    ChildProcess terminal("script", {"-qec", "TERM=xterm " + command, "/dev/null"});
    return terminal.run() && terminal.exitCode() == 0 ? terminal.output()
                                                      : "failed: " + terminal.report();
}

void SelectorScriptTest::aTerminalGetsColourUnlessNoColorIsSet()
{
    const QByteArray command = SELECTOR " read " + selectorUrl(module, "speed").toUtf8();
    const QByteArray above = "processdata://" + module.toUtf8() + "/Controller/1/\u2026\r\n";
    const QByteArray header = above + "\x1b[1mURL ";
    QVERIFY2(onTerminal(command).startsWith(header), onTerminal(command));
    QVERIFY2(onTerminal("NO_COLOR= " + command).startsWith(header), "empty means not set");
    const QByteArray plain = onTerminal("NO_COLOR=1 " + command);
    QVERIFY2(plain.startsWith(above + "URL ") && !plain.contains('\x1b'), plain);
    const QByteArray dumb = onTerminal("TERM=dumb " + command);
    QVERIFY2(dumb.startsWith(above + "URL ") && !dumb.contains('\x1b'), dumb);
}

void SelectorScriptTest::interruptEndsEveryCommandThatWaits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("modules") << QStringList{"modules"};
    QTest::newRow("browse") << QStringList{"browse", "MODULE"};
    QTest::newRow("read") << QStringList{"read", speedUrl};
    QTest::newRow("read from standard input") << QStringList{"read", "-f", "-"};
    QTest::newRow("write") << QStringList{"write", speedUrl, "1"};
    QTest::newRow("watch") << QStringList{"watch", speedUrl};
    QTest::newRow("properties") << QStringList{"properties", speedUrl};
    QTest::newRow("explain") << QStringList{"explain", speedUrl};
    QTest::newRow("doctor") << QStringList{"doctor", "MODULE"};
    QTest::newRow("check") << QStringList{"check", "LIST"};
    QTest::newRow("snapshot") << QStringList{"snapshot", "-o", "FOLDER", "MODULE"};
    QTest::newRow("diff with a list from standard input")
        << QStringList{"diff", "SOURCE", "SOURCE", "-f", "-"};
    QTest::newRow("apply") << QStringList{"apply", "LIST"};
    QTest::newRow("complete") << QStringList{"complete", "place", "MODULE/"};
}

void SelectorScriptTest::interruptEndsEveryCommandThatWaits()
{
    QFETCH(QStringList, arguments);
    const QTemporaryDir folder;
    for (const char *name : {"LIST", "SOURCE", "FOLDER"}) {
        arguments.replaceInStrings(name, folder.filePath(name));
    }
    QVERIFY(writeFile(folder.filePath("LIST"), selectorUrl(module, "speed").toUtf8() + " 1\n"));
    QVERIFY(writeFile(folder.filePath("SOURCE"),
                      R"({"module":"M","object":"O","instance":"1","elements":[]})"));
    publisher->process().suspend();
    system->suspend();

    ChildProcess client(SELECTOR, filledIn(arguments) + QStringList{"--timeout", "120"});
    QVERIFY(client.start());
    QTRY_VERIFY_WITH_TIMEOUT(catches(SIGINT, client.pid()), 20000);
    client.interrupt();
    QVERIFY(client.waitForEnd());

    QVERIFY2(client.exitCode() == 130, client.report());
}

void SelectorScriptTest::otherSignalsEndWhatWaitsAsShellsReportThem_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

void SelectorScriptTest::otherSignalsEndWhatWaitsAsShellsReportThem()
{
    QFETCH(const int, signalNumber);
    QFETCH(const int, exitCode);
    ChildProcess client(SELECTOR, {"apply", "-", "--rollback"});
    QVERIFY(client.start());
    QTRY_VERIFY_WITH_TIMEOUT(catches(signalNumber, client.pid()), 20000);
    QCOMPARE(::kill(static_cast<pid_t>(client.pid()), signalNumber), 0);
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == exitCode, client.report());
}

void SelectorScriptTest::anInterruptThatTheParentSwitchedOffStaysOff()
{
    ChildProcess client(
        "bash", {"-c", "trap '' INT; echo $$; exec \"$0\" \"$@\"", SELECTOR, "read", "-f", "-"});
    QVERIFY(client.start() && !client.nextLine().isNull());
    client.interrupt();
    client.write(selectorUrl(module, "speed").toUtf8());
    client.closeInput();
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 0, client.report());
}

void SelectorScriptTest::whatAnOptionDoesNotKnowIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("format") << QStringList{"read", "--format", "xml", speedUrl};
    QTest::newRow("timeout") << QStringList{"read", "--timeout", "soon", speedUrl};
    QTest::newRow("type") << QStringList{"modules", "--type", "a/b"};
    QTest::newRow("an empty type") << QStringList{"modules", "--type", ""};
    QTest::newRow("until") << QStringList{"watch", "--until", "speed >> 1", speedUrl};
    QTest::newRow("count") << QStringList{"watch", "--count", "0", speedUrl};
    QTest::newRow("interval") << QStringList{"watch", "--interval", "fast", speedUrl};
    QTest::newRow("file") << QStringList{"read", "--file", "/nowhere/list"};
    QTest::newRow("an empty file") << QStringList{"read", "--file", "", speedUrl};
    QTest::newRow("against") << QStringList{"check", "-", "--against", "/nowhere"};
    QTest::newRow("an empty output") << QStringList{"snapshot", "--output", ""};
    QTest::newRow("a value where none is taken") << QStringList{"apply", "--verify=twice", "x"};
    QTest::newRow("quiet and plot") << QStringList{"watch", "-q", "--plot", speedUrl};
    QTest::newRow("quiet where there are no values") << QStringList{"explain", "-q", speedUrl};
    QTest::newRow("kind of word") << QStringList{"complete", "leaf", "x"};
}

void SelectorScriptTest::whatAnOptionDoesNotKnowIsWrongUsage()
{
    QFETCH(const QStringList, arguments);
    ChildProcess client(SELECTOR, filledIn(arguments));
    QVERIFY(client.start());
    client.closeInput();
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 2 && client.output().isEmpty(), client.report());
    QVERIFY2(client.errors().contains("Try selector "), client.report());
}

QTEST_GUILESS_MAIN(SelectorScriptTest)
#include "SelectorScriptTest.moc"
