// SPDX-License-Identifier: MIT
// Helps, man page and completion name every option that a command takes.
#include "Command.h"

#include <QFile>
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
    const QString page = content("selector.1").remove('\\');
    QStringList wanted{"PROCESSDATA_BUS", "PROCESSDATA_DBUS_TIMEOUT_MS", "NO_COLOR", "--version"};
    for (const Command &command : commands()) {
        wanted += optionsOf(command);
        wanted.append("SS " + command.name);
    }
    for (const char *field : {"url", "status", "value", "unit", "type", "errorType", "time",
                              "timestampNs", "reason", "code", "event", "indices", "changes"}) {
        wanted.append("B " + QString(field));
    }
    for (const QString &word : qAsConst(wanted)) {
        QVERIFY2(page.contains(word), qPrintable(word));
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
