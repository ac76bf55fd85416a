// SPDX-License-Identifier: MIT
// Shells complete URLs and places from the live system, and stay silent without one.
#include "SelectorSystemTest.h"

#include <QTest>

class SelectorCompletionTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void eachLevelIsCompleted_data();
    void eachLevelIsCompleted();
    void shellsOfferOnlyWhatIsAccepted_data();
    void shellsOfferOnlyWhatIsAccepted();
    void shellsCompleteUrls_data();
    void shellsCompleteUrls();
    void withoutASystemNothingIsSaid_data();
    void withoutASystemNothingIsSaid();
    void aHungServiceHoldsNobodyUp();
    void wrongUsageIsNamed();
};

void SelectorCompletionTest::init()
{
    SystemTest::init();
    const QJsonObject drive{{"name", "drive"},
                            {"elements", QJsonArray{leaf("speed", "int32"), leaf("on", "bool")}}};
    bringUp({drive, leaf("a b", "bool", {{"selectorType", "DigitalSelector"}})});
}

void SelectorCompletionTest::eachLevelIsCompleted_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("expected");
    const auto url = [](const char *name, const char *word, const char *expected) {
        QTest::newRow(name) << "url" << word << expected;
    };
    url("modules", "processdata://", "processdata://MODULE/\n");
    url("modules without the scheme", "", "MODULE/\n");
    url("a short path", "x=MODULE/Controller/1/drive/s", "x=MODULE/Controller/1/drive/speed\n");
    url("objects", "processdata://MODULE/", "processdata://MODULE/Controller/\n");
    url("instances", "processdata://MODULE/Controller/", "processdata://MODULE/Controller/1/\n");
    url("leaves and groups", "processdata://MODULE/Controller/1/",
        "processdata://MODULE/Controller/1/drive/\nprocessdata://MODULE/Controller/1/a%20b\n");
    url("leaves of a group", "x=processdata://MODULE/Controller/1/drive/s",
        "x=processdata://MODULE/Controller/1/drive/speed\n");
    url("no such module", "processdata://Nowhere/", "");
    url("no such instance", "processdata://MODULE/Controller/2/", "");
    QTest::newRow("modules, as doctor takes them") << "module"
                                                   << "MOD"
                                                   << "";
    QTest::newRow("all modules") << "module"
                                 << ""
                                 << "MODULE\n";
    QTest::newRow("places: instances") << "place"
                                       << "MODULE/Controller/"
                                       << "MODULE/Controller/1\n";
    QTest::newRow("places: groups alone") << "place"
                                          << "MODULE/Controller/1/"
                                          << "MODULE/Controller/1/drive/\n";
}

void SelectorCompletionTest::eachLevelIsCompleted()
{
    QFETCH(QString, kind);
    QFETCH(QString, word);
    QFETCH(QString, expected);

    ChildProcess client(SELECTOR, {"complete", kind, filledIn(word)});
    VERIFY_RUN(client, 0);
    QCOMPARE(client.output(), filledIn(expected));
    QCOMPARE(client.errors(), QByteArray());
}

// What doctor would refuse, or a command that takes no more, is not offered.
void SelectorCompletionTest::shellsOfferOnlyWhatIsAccepted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("expected");
    QTest::newRow("doctor takes modules") << "doctor MOD"
                                          << "MODULE\n";
    QTest::newRow("doctor takes no places") << "doctor MODULE/"
                                            << "";
    QTest::newRow("browse takes places") << "browse MODULE/"
                                         << "MODULE/Controller/\n";
    QTest::newRow("browse takes one place") << "browse MODULE/Controller/1 MOD"
                                            << "";
    QTest::newRow("explain takes several URLs")
        << "explain processdata://MODULE/Controller/1/drive/on processdata://MODULE/"
        << "processdata://MODULE/Controller/\n";
    QTest::newRow("write takes a value") << "write processdata://MODULE/Controller/1/drive/on p"
                                         << "";
    QTest::newRow("write takes a second URL")
        << "write processdata://MODULE/Controller/1/drive/on 1 processdata://MODULE/"
        << "processdata://MODULE/Controller/\n";
    QTest::newRow("options are no arguments") << "explain --property unit processdata://MODULE/"
                                              << "processdata://MODULE/Controller/\n";
    QTest::newRow("read takes labels") << "read x=processdata://MODULE/"
                                       << "x=processdata://MODULE/Controller/\n";
    QTest::newRow("read takes short paths") << "read MODULE/"
                                            << "MODULE/Controller/\n";
    QTest::newRow("watch takes labels") << "watch x=processdata://MODULE/"
                                        << "x=processdata://MODULE/Controller/\n";
}

void SelectorCompletionTest::shellsOfferOnlyWhatIsAccepted()
{
    QFETCH(QString, line);
    QFETCH(QString, expected);
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
    line.replace("MODULE", module).replace("MOD", module.left(2));
    const QString program = "selector() { " SELECTOR " \"$@\"; };";
    const QString bash = "source " COMPLETIONS
                         "/selector.bash; compopt() { :; }; COMP_WORDBREAKS=' ';"
        + program + "COMP_LINE='selector " + line + "'; COMP_POINT=${#COMP_LINE};"
        + "COMP_WORDS=($COMP_LINE); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _selector;"
          "for one in \"${COMPREPLY[@]}\"; do echo \"$one\"; done";
    const QString zsh = program + "compadd() { print -l -- $names };" + "words=(selector " + line
        + "); CURRENT=${#words}; PREFIX=${words[-1]};"
        + "complete_it() { source " COMPLETIONS "/_selector }; complete_it | grep . || true";
    const QString fish = "function selector; " SELECTOR " $argv; end;"
                         "source " COMPLETIONS "/selector.fish; complete -C 'selector "
        + line + "'";
    const QVector<QStringList> shells{
        {"bash", "-c", bash}, {"zsh", "-fc", zsh}, {"fish", "--no-config", "-c", fish}};
    for (QStringList command : shells) {
        ChildProcess shell(command.takeFirst(), command);
        QVERIFY(shell.run());
        QVERIFY2(shell.output() == filledIn(expected) && shell.errors().isEmpty(), shell.report());
    }
}

void SelectorCompletionTest::shellsCompleteUrls_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("expected");
    // Readline breaks words at : and replaces only what follows.
    const QString bash
        = "source " COMPLETIONS "/selector.bash; compopt() { :; };"
          "selector() { " SELECTOR " \"$@\"; };"
          "COMP_LINE='selector read processdata://MODULE/Con'; COMP_POINT=${#COMP_LINE};"
          "COMP_WORDS=(selector read processdata : //MODULE/Con); COMP_CWORD=4;"
          "_selector; printf '%s\\n' \"${COMPREPLY[@]}\"";
    QTest::newRow("bash") << QStringList{"bash", "-c", bash} << "//MODULE/Controller/\n";
    const QString zsh = "selector() { " SELECTOR " \"$@\" }; compadd() { print -l -- $names };"
                        "words=(selector watch processdata://MODULE/Con); CURRENT=3;"
                        "PREFIX=processdata://MODULE/Con;"
                        "complete_it() { source " COMPLETIONS "/_selector }; complete_it";
    QTest::newRow("zsh") << QStringList{"zsh", "-fc", zsh} << "processdata://MODULE/Controller/\n";
    const QString fish = "function selector; " SELECTOR " $argv; end;"
                         "source " COMPLETIONS "/selector.fish;"
                         "complete -C 'selector read processdata://MODULE/Con'";
    QTest::newRow("fish") << QStringList{"fish", "--no-config", "-c", fish}
                          << "processdata://MODULE/Controller/\n";
}

void SelectorCompletionTest::shellsCompleteUrls()
{
    QFETCH(QStringList, command);
    QFETCH(QString, expected);
    command.replaceInStrings("MODULE", module);

    ChildProcess shell(command.takeFirst(), command);
    QVERIFY(shell.run());

    QVERIFY2(shell.output() == filledIn(expected), shell.report().constData());
    QCOMPARE(shell.errors(), QByteArray());
}

void SelectorCompletionTest::withoutASystemNothingIsSaid_data()
{
    QTest::addColumn<QString>("word");
    QTest::newRow("modules") << "processdata://";
    QTest::newRow("objects") << "processdata://MODULE/";
    QTest::newRow("instances") << "processdata://MODULE/Controller/";
    QTest::newRow("leaves") << "processdata://MODULE/Controller/1/";
}

void SelectorCompletionTest::withoutASystemNothingIsSaid()
{
    QFETCH(QString, word);
    bus->stop();

    ChildProcess client(SELECTOR, {"complete", "url", filledIn(word)});
    VERIFY_RUN(client, 0);
    QCOMPARE(client.output() + client.errors(), QByteArray());
}

void SelectorCompletionTest::aHungServiceHoldsNobodyUp()
{
    publisher->process().suspend();

    // Longer than this test waits: completion has a limit of its own.
    ChildProcess client("env",
                        {"PROCESSDATA_DBUS_TIMEOUT_MS=600000", SELECTOR, "complete", "url",
                         filledIn("processdata://MODULE/")});
    VERIFY_RUN(client, 0);
    QCOMPARE(client.output() + client.errors(), QByteArray());
    publisher->process().resume();
}

void SelectorCompletionTest::wrongUsageIsNamed()
{
    ChildProcess client(SELECTOR, {"complete", "everything"});
    VERIFY_RUN(client, 2);
    QVERIFY2(client.errors().contains("expected \"url\", \"place\" or \"module\""),
             client.report().constData());
}

QTEST_GUILESS_MAIN(SelectorCompletionTest)
#include "SelectorCompletionTest.moc"
