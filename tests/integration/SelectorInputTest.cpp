// SPDX-License-Identifier: MIT
// Lists of selectors come from whatever can be read: files, pipes, standard input.
#include "SelectorSystemTest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class SelectorInputTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void listsAreReadFromPipes_data();
    void listsAreReadFromPipes();
    void aListMayComeInPieces();
    void severalListsAreReadInTheirOrder();
    void aListThatCannotBeReadIsNamed_data();
    void aListThatCannotBeReadIsNamed();
};

void SelectorInputTest::init()
{
    SystemTest::init();
    bringUp({leaf("speed", "float64", {{"unit", "1/min"}})});
    VERIFY_COMMAND(publisher->publish("speed", 2));
}

void SelectorInputTest::listsAreReadFromPipes_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("output");
    const struct
    {
        const char *name;
        QString begin;
        QString line;
        QByteArray output;
    } commands[] = {{"read", "\"$0\" read -q -f", "$1", "2\n"},
                    {"watch", "\"$0\" watch -q --count 1 -f", "$1", "2\n"},
                    {"properties", "\"$0\" properties -q --property unit -f", "$1", "1/min\n"},
                    {"write", "\"$0\" write --no-legend --format csv -f", "$1 3", "written,,2,\n"},
                    {"check", "\"$0\" check --no-legend --format csv", "$1 3", ",ok,,\n"},
                    {"apply", "\"$0\" apply --no-legend --format csv", "$1 3", "written,,\n"}};
    for (const auto &command : commands) {
        const auto row = [&](const char *kind, const QString &shell) {
            QTest::addRow("%s, %s", command.name, kind)
                << shell.arg(command.begin, command.line) << command.output;
        };
        row("process substitution", "%1 <(echo \"%2\")");
        row("a named pipe", "mkfifo \"$2\"; echo \"%2\" > \"$2\" & %1 \"$2\"");
        row("standard input by its path", "echo \"%2\" | %1 /dev/stdin");
        row("standard input", "echo \"%2\" | %1 -");
        row("a file as standard input", "echo \"%2\" > \"$2\"; %1 - < \"$2\"");
    }
}

void SelectorInputTest::listsAreReadFromPipes()
{
    QFETCH(const QString, command);
    QFETCH(const QByteArray, output);
    const QTemporaryDir folder;
    ChildProcess client(
        "bash", {"-c", command, SELECTOR, selectorUrl(module, "speed"), folder.filePath("list")});
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 0 && client.output().endsWith(output), client.report());
}

// More than a pipe holds, and the last line has no end.
void SelectorInputTest::aListMayComeInPieces()
{
    ChildProcess client("bash",
                        {"-c",
                         "\"$0\" read -q -f <(for i in {1..3000}; do echo \"$1?deactivated\"; "
                         "done; printf %s \"$1\") | sort | uniq -c",
                         SELECTOR, selectorUrl(module, "speed")});
    QVERIFY(client.run());
    QCOMPARE(client.output().simplified(), QByteArray("3000 1 2"));
}

void SelectorInputTest::severalListsAreReadInTheirOrder()
{
    ChildProcess client(
        "bash",
        {"-c",
         "echo \"b=$1\" | \"$0\" read -j a=\"$1\" -f - -f <(echo \"c=$1 5\") | jq -r '.results[].label'",
         SELECTOR, selectorUrl(module, "speed")});
    QVERIFY(client.run());
    QVERIFY2(client.output() == "a\nb\nc\n", client.report());
}

void SelectorInputTest::aListThatCannotBeReadIsNamed_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("a folder") << "-f /tmp" << QByteArray("/tmp: ");
    QTest::newRow("a closed standard input")
        << "-f - <&-" << QByteArray("standard input: Bad file descriptor");
    QTest::newRow("without end") << "-f /dev/zero" << QByteArray("/dev/zero: longer than 64 MiB");
    QTest::newRow("a name that steers the terminal")
        << "-f $'/no\\e[2J'" << QByteArray("/no\\x1b[2J: No such file");
    QTest::newRow("an empty pipe") << "-f <(:)" << QByteArray("No selector given.");
}

void SelectorInputTest::aListThatCannotBeReadIsNamed()
{
    QFETCH(const QString, arguments);
    QFETCH(const QByteArray, reason);
    ChildProcess client("bash", {"-c", "\"$0\" read " + arguments, SELECTOR});
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 2 && client.errors().startsWith("selector: " + reason),
             client.report());
}

QTEST_GUILESS_MAIN(SelectorInputTest)
#include "SelectorInputTest.moc"
