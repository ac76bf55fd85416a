// SPDX-License-Identifier: MIT
// Results that cannot be written are a failure with one reason, on whatever they go to.
#include "BusTestMain.h"
#include "Files.h"
#include "RequireRoot.h"
#include "SelectorSystemTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class SelectorOutputTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void resultsThatAreNotWrittenAreAFailure_data();
    void resultsThatAreNotWrittenAreAFailure();
    void watchEndsWhenItsLinesAreNotWritten_data();
    void watchEndsWhenItsLinesAreNotWritten();
    void aDiskThatFillsHalfWayIsAFailure();
    void aReaderThatGoesEndsTheToolInSilence();
    void aClosedStandardOutputIsNotTakenByTheBus();
    void aSimulatorThatCannotSayReadyEnds_data();
    void aSimulatorThatCannotSayReadyEnds();
    void aReportOnAFullDiskNamesTheErrorAndLeavesNothing();
    void aSnapshotOnAFullDiskNamesTheErrorAndLeavesNothing();
    void aReportIntoADeviceLeavesTheDevice();

private:
    QStringList onSmallDisk(const QString &script) const;
    QByteArray shell(const QString &command, const QString &redirection, int exitCode);

    QScopedPointer<QTemporaryDir> folder;
};

namespace {

const QString full("> /dev/full");
const QString closed(">&-");
const QByteArray noSpace("selector: standard output: No space left on device\n");
const QByteArray notOpen("selector: standard output: Bad file descriptor\n");

} // namespace

void SelectorOutputTest::init()
{
    SystemTest::init();
    folder.reset(new QTemporaryDir);
    bringUp({leaf("speed", "float64", {{"unit", "1/min"}}),
             leaf("bulk", "string", {{"capacity", 200000}})});
    VERIFY_COMMAND(publisher->publish("speed", 2));
    VERIFY_COMMAND(publisher->publish("bulk", QString(200000, 'x')));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
}

void SelectorOutputTest::cleanup()
{
    SelectorSystemTest::cleanup();
    folder.reset();
}

// Runs it in a shell; its standard error, or all that is known when it ends with another code.
QByteArray SelectorOutputTest::shell(const QString &command, const QString &redirection,
                                     int exitCode)
{
    ChildProcess client("bash",
                        {"-c", "exec " + QString(filledIn(command)) + ' ' + redirection, "bash"});
    const bool ended = client.run();
    return ended && client.exitCode() == exitCode ? client.errors() : client.report();
}

void SelectorOutputTest::resultsThatAreNotWrittenAreAFailure_data()
{
    QTest::addColumn<QString>("command");
    const QString url = "processdata://MODULE/Controller/1/";
    for (const QString &command :
         {QString("--help"), QString("--version"), QString("read --help"), QString("modules"),
          QString("browse MODULE"), "read " + url + "speed", "read -q " + url + "speed",
          "read -j " + url + "speed " + url + "none", "read " + url + "bulk",
          "write " + url + "speed 3", "properties " + url + "speed", "explain " + url + "speed",
          QString("doctor MODULE"), QString("complete place MODULE/")}) {
        QTest::newRow(qPrintable(command)) << command;
    }
}

void SelectorOutputTest::resultsThatAreNotWrittenAreAFailure()
{
    QFETCH(const QString, command);
    QCOMPARE(shell(SELECTOR " " + command, full, 1), noSpace);
    QCOMPARE(shell(SELECTOR " " + command, closed, 1), notOpen);
}

void SelectorOutputTest::watchEndsWhenItsLinesAreNotWritten_data()
{
    QTest::addColumn<QString>("options");
    for (const char *options : {"", "-q", "-j", "--format csv", "--no-legend",
                                "--until 'speed>1000'", "--plot --count 1"}) {
        QTest::newRow(*options == 0 ? "a table" : options) << options;
    }
}

void SelectorOutputTest::watchEndsWhenItsLinesAreNotWritten()
{
    QFETCH(const QString, options);
    const QString command
        = QString(SELECTOR " watch processdata://MODULE/Controller/1/speed %1").arg(options);
    QCOMPARE(shell(command, full, 1), noSpace);
    QCOMPARE(shell(command, closed, 1), notOpen);
}

// Arguments of unshare: a file system of 64 KiB of the test's own, which the script stands in.
QStringList SelectorOutputTest::onSmallDisk(const QString &script) const
{
    QDir(folder->path()).mkpath("disk");
    return {"--mount", "sh",
            "-c",      "mount -t tmpfs -o size=64k tmpfs \"$1\" && cd \"$1\" && " + script,
            SELECTOR,  folder->filePath("disk"),
            module,    selectorUrl(module, "bulk")};
}

void SelectorOutputTest::aDiskThatFillsHalfWayIsAFailure()
{
    REQUIRE_ROOT();
    ChildProcess client(
        "unshare", onSmallDisk("\"$0\" read -q \"$3\" > out; code=$?; stat -c %s out; exit $code"));
    VERIFY_RUN(client, 1);
    QCOMPARE(client.errors(), noSpace);
    QCOMPARE(client.output(), QByteArray("65536\n"));
}

void SelectorOutputTest::aReaderThatGoesEndsTheToolInSilence()
{
    ChildProcess client("bash",
                        {"-c",
                         "\"$0\" watch --no-legend --format csv --interval 1 \"$1\" | head -n 1; "
                         "exit ${PIPESTATUS[0]}",
                         SELECTOR, selectorUrl(module, "speed")});
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith("value,").isNull(), client.report());
    for (int i = 0; i < 10000 && client.isRunning(); ++i) {
        VERIFY_COMMAND(publisher->publish("speed", 10 + i));
    }
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 141 && client.errors().isEmpty(), client.report());
}

// Else the results would be sent to whatever was opened first.
void SelectorOutputTest::aClosedStandardOutputIsNotTakenByTheBus()
{
    ChildProcess client("bash",
                        {"-c", "exec \"$0\" watch \"$1\" 0>&- 1>&- 2>\"$2\"", SELECTOR,
                         selectorUrl(module, "speed"), folder->filePath("errors")});
    VERIFY_RUN(client, 1);
    QCOMPARE(contentOf(folder->filePath("errors")), notOpen);
}

void SelectorOutputTest::aSimulatorThatCannotSayReadyEnds_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("ready") << "--system-services";
    QTest::newRow("help") << "--help";
    QTest::newRow("version") << "--version";
}

void SelectorOutputTest::aSimulatorThatCannotSayReadyEnds()
{
    QFETCH(const QString, arguments);
    system->kill(); // only one may own the services
    const QByteArray program("process-data-simulator: standard output: ");
    QCOMPARE(shell(SIMULATOR " " + arguments, full, 1), program + "No space left on device\n");
    QCOMPARE(shell(SIMULATOR " " + arguments, closed, 1), program + "Bad file descriptor\n");
}

void SelectorOutputTest::aReportOnAFullDiskNamesTheErrorAndLeavesNothing()
{
    REQUIRE_ROOT();
    ChildProcess client(
        "unshare",
        onSmallDisk("\"$0\" doctor --report fault.json --with-values \"$2\" > /dev/null; "
                    "code=$?; ls -A; exit $code"));
    VERIFY_RUN(client, 1);
    QCOMPARE(client.errors(),
             QByteArray("selector: fault.json: No space left on device; name a file in a folder "
                        "that may be written and has space left\n"));
    QCOMPARE(client.output(), QByteArray());
}

void SelectorOutputTest::aSnapshotOnAFullDiskNamesTheErrorAndLeavesNothing()
{
    REQUIRE_ROOT();
    ChildProcess client("unshare",
                        onSmallDisk("\"$0\" snapshot --output . \"$2\" > /dev/null; "
                                    "code=$?; ls -A; exit $code"));
    VERIFY_RUN(client, 1);
    QVERIFY2(client.errors().endsWith(".pdd: No space left on device\n"), client.report());
    QCOMPARE(client.output(), QByteArray());
}

// A folder of the test's own has the device: a replaced one would be that of the machine.
void SelectorOutputTest::aReportIntoADeviceLeavesTheDevice()
{
    const QString pipe = folder->filePath("pipe");
    ChildProcess client("bash",
                        {"-c",
                         "mkfifo \"$2\" && cat \"$2\" & "
                         "until [[ -p $2 ]]; do :; done; "
                         "\"$0\" doctor --report \"$2\" \"$1\" > /dev/null; code=$?; "
                         "wait; [[ -p $2 ]] || exit 9; exit $code",
                         SELECTOR, module, pipe});
    VERIFY_RUN(client, 0);
    QVERIFY2(client.output().contains("\"selector.doctorReport/1\""), client.report());
}

BUS_TEST_MAIN(SelectorOutputTest)
#include "SelectorOutputTest.moc"
