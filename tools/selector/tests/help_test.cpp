// SPDX-License-Identifier: MIT
// Helps, man page and completion name every option that a command takes.
#include "Command.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

namespace {

QStringList optionsOf(const Command &command)
{
    QStringList options{"--format", "--verbose", "--help", "--timeout", "--no-legend"};
    const QMap<int, QString> special{{OptionFile, "--file"},
                                     {OptionType, "--type"},
                                     {OptionProperty, "--property"},
                                     {OptionInterval, "--interval"},
                                     {OptionCount, "--count"},
                                     {OptionUntil, "--until"},
                                     {OptionTimestamps, "--timestamps"},
                                     {OptionChangesOnly, "--changes-only"},
                                     {OptionPlot, "--plot"},
                                     {OptionAgainst, "--against"},
                                     {OptionOutput, "--output"},
                                     {OptionDryRun, "--dry-run"},
                                     {OptionVerify, "--verify"},
                                     {OptionRollback, "--rollback"},
                                     {OptionQuiet, "--quiet"}};
    if ((command.options & OptionDoctor) != 0) {
        options += QStringList{"--clean", "--yes", "--report", "--with-values"};
    }
    for (auto option = special.begin(); option != special.end(); ++option) {
        if ((command.options & option.key()) != 0) {
            options.append(option.value());
        }
    }
    return options;
}

// What the groups of the pattern find, each once.
QStringList flags(const QString &text, const char *pattern)
{
    QStringList found;
    const QRegularExpression expression(pattern);
    for (auto match = expression.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        found.append(next.captured(next.lastCapturedIndex()));
    }
    found.removeDuplicates();
    return found;
}

QString content(const char *name)
{
    QFile file(QStringLiteral(SELECTOR_SOURCE_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class HelpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachCommandExplainsItsOptions();
    void theManPageNamesEverything();
    void eachCommandHasAPageThatNamesItsFlags();
    void theCompletionKnowsEverything();
};

void HelpTest::eachCommandExplainsItsOptions()
{
    QCOMPARE(commands().size(), 13);
    for (const Command &command : commands()) {
        QVERIFY2(command.help.startsWith("Usage: selector " + command.name),
                 qPrintable(command.name));
        for (const QString &option : optionsOf(command)) {
            QVERIFY2(command.help.contains(option), qPrintable(command.name + ' ' + option));
        }
    }
}

void HelpTest::theManPageNamesEverything()
{
    const QString page = content("man/selector.1").remove('\\');
    QStringList wanted{"PROCESSDATA_BUS", "PROCESSDATA_DBUS_TIMEOUT_MS", "NO_COLOR", "--version"};
    for (const Command &command : commands()) {
        wanted.append(QString(".BR selector-%1 (1)\n%2\n").arg(command.name, command.summary));
    }
    for (const char *field : {"url", "status", "value", "unit", "type", "errorType", "time",
                              "timestampNs", "reason", "code", "event", "indices", "changes"}) {
        wanted.append("B " + QString(field));
    }
    for (const QString &word : qAsConst(wanted)) {
        QVERIFY2(page.contains(word), qPrintable(word));
    }
}

void HelpTest::eachCommandHasAPageThatNamesItsFlags()
{
    for (const Command &command : commands()) {
        const QString page = content(("man/selector-" + command.name + ".1").toUtf8()).remove('\\');
        QVERIFY2(page.contains(QString("\nselector-%1 - %2\n").arg(command.name, command.summary)),
                 qPrintable(command.name));
        QVERIFY2(page.contains(".B selector " + command.name + '\n'), qPrintable(command.name));
        QVERIFY(page.contains(".SH EXIT STATUS\n") && page.contains(".SH EXAMPLES\n"));
        const QStringList ofHelp = flags(command.help, "(?:^| )(--?[a-z][a-z-]*)");
        const QStringList ofPage = flags(page.section(".SH OPTIONS", 1).section("\n.SH ", 0, 0),
                                         "\\.TP\n\\.B[RI]? (--?[a-z-]+)|, \" (--[a-z-]+)");
        QVERIFY2(ofHelp.size() >= 7, qPrintable(command.name));
        for (const QString &flag : ofHelp) {
            QVERIFY2(ofPage.contains(flag), qPrintable(command.name + " page lacks " + flag));
        }
        for (const QString &flag : ofPage) {
            QVERIFY2(ofHelp.contains(flag) || flag == "--json",
                     qPrintable(command.name + " help lacks " + flag));
        }
    }
}

void HelpTest::theCompletionKnowsEverything()
{
    const QMap<QString, QString> prefixes{{"completion/selector.bash", "--"},
                                          {"completion/_selector", "--"},
                                          {"completion/selector.fish", "-l "}};
    for (auto shell = prefixes.begin(); shell != prefixes.end(); ++shell) {
        const QString script = content(shell.key().toUtf8());
        for (const Command &command : commands()) {
            QVERIFY2(script.contains(command.name), qPrintable(shell.key() + ' ' + command.name));
            for (const QString &option : optionsOf(command)) {
                QVERIFY2(script.contains(shell.value() + option.mid(2)),
                         qPrintable(shell.key() + ' ' + option));
            }
        }
    }
}

QTEST_APPLESS_MAIN(HelpTest)
#include "help_test.moc"
