// SPDX-License-Identifier: MIT
// Helps, man page and completion name every option that a command takes.
#include "Help.h"
#include "Files.h"
#include "LineCompletion.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

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

// As it is installed, without the backslashes of roff.
QString page(const QString &name, const Command *command)
{
    const QString text = QString::fromUtf8(contentOf(SELECTOR_SOURCE_DIR "/man/" + name + ".1"));
    return manualPage(text, command).remove('\\');
}

} // namespace

class HelpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOverviewListsCommandsAndOptions();
    void eachCommandExplainsItsOptions();
    void everyHelpFitsAScreenOf80Columns();
    void anOptionTakesAValueEverywhereOrNowhere();
    void aHelpHasItsOptionsInColumns();
    void aPageHasItsOptionsInFull();
    void theManPageNamesEverything();
    void eachCommandHasAPageThatNamesItsFlags();
    void theCompletionKnowsEverything();
};

void HelpTest::theOverviewListsCommandsAndOptions()
{
    const QString text = overview();
    for (const Command &command : commands()) {
        QVERIFY2(commandList().contains("  " + command.name), qPrintable(command.name));
    }
    QVERIFY2(text.contains(commandList()), qPrintable(text));
    for (const Option &option : commonOptions()) {
        QVERIFY2(option.text[0] == 0 || text.contains(option.head), option.head);
    }
    for (const QString &line : text.split('\n')) {
        QVERIFY2(line.size() <= 80, qPrintable(line));
    }
}

void HelpTest::eachCommandExplainsItsOptions()
{
    QCOMPARE(commands().size(), 13 + historyCommands().size());
    for (const Command &command : commands()) {
        const QString help = helpOf(command);
        QVERIFY2(help.startsWith("Usage: selector " + command.name), qPrintable(command.name));
        QStringList options{"--format", "--verbose", "--help", "--timeout", "--no-legend"};
        for (const Option &option : command.options) {
            options.append("--" + option.name());
        }
        for (const QString &option : qAsConst(options)) {
            QVERIFY2(help.contains(option), qPrintable(command.name + ' ' + option));
        }
    }
}

void HelpTest::everyHelpFitsAScreenOf80Columns()
{
    for (const Command &command : commands()) {
        const QStringList lines = helpOf(command).split('\n');
        for (const QString &line : lines) {
            QVERIFY2(line.size() <= 80, qPrintable(command.name + ": " + line));
        }
        QVERIFY2(lines.contains("Options:") && lines.indexOf("") < lines.indexOf("Options:"),
                 qPrintable(command.name));
    }
}

// Else nobody could say where the command stands behind it.
void HelpTest::anOptionTakesAValueEverywhereOrNowhere()
{
    QHash<QString, bool> takesValue;
    for (const Command &command : commands()) {
        for (const Option &option : commonOptions(command.options) + command.options) {
            const QStringList spellings = option.spellings();
            for (const QString &spelling : spellings) {
                const bool takes = !option.value().isEmpty();
                QVERIFY2(takesValue.value(spelling, takes) == takes,
                         qPrintable(command.name + ' ' + spelling));
                takesValue.insert(spelling, takes);
            }
        }
    }
    QVERIFY(takesValue.value("--format") && !takesValue.value("-j"));
    QCOMPARE(commandPosition({"--format", "csv", "-j", "--timeout=3", "read", "x"}), 4);
    QCOMPARE(commandPosition({"-f", "-", "read"}), 2);
    QCOMPARE(commandPosition({"-j"}), -1);
}

void HelpTest::aHelpHasItsOptionsInColumns()
{
    const Command command{"fill",
                          "fill a tank",
                          "Usage: selector fill\n",
                          {{"--dry", "without water"},
                           {"-f, --from TANK", "first line\nsecond line"},
                           {"-l, --longer-than-others M", "one line"}},
                          "\nExample: none\n",
                          {},
                          nullptr};

    const QString help = helpOf(command);

    QVERIFY2(
        help.startsWith("Usage: selector fill\n"
                        "\n"
                        "Options:\n"
                        "  --dry            without water\n"
                        "  -f, --from TANK  first line\n"
                        "                   second line\n"
                        "  -l, --longer-than-others M  one line\n"
                        "  --format FORMAT  table (default), json or csv; -j is --format json\n"
                        "  --no-legend      leave out"),
        qPrintable(help));
    QVERIFY2(help.endsWith("130 interrupted.\n\nExample: none\n"), qPrintable(help));
}

void HelpTest::aPageHasItsOptionsInFull()
{
    const Command command{"fill",
                          "fill a tank",
                          "Usage: selector fill [OPTIONS] --now TANK...\nFills it.\n",
                          {{"--dry", "without water", "It's a test."},
                           {"-f, --from TANK", "not from\nthis TANK"},
                           {"--by WAY", "hand or pump\\", "", Option::Text, "hand pump"}},
                          "",
                          {},
                          nullptr};

    const QString page = manualPage(".\\\" first\n.SH OPTIONS\n.\\\" OPTIONS\n.SH END\n", &command);

    QVERIFY2(page.startsWith(".\\\" first\n"
                             ".TH SELECTOR\\-FILL 1 \"\" \"selector\" \"User Commands\"\n"
                             ".SH NAME\n"
                             "selector\\-fill \\- fill a tank\n"
                             ".SH SYNOPSIS\n"
                             ".B selector fill\n"
                             "[\\fIOPTIONS\\fR] \\-\\-now \\fITANK\\fR...\n"
                             ".SH OPTIONS\n"
                             ".TP\n.BR \\-\\-dry\nWithout water. It\\(aqs a test.\n"
                             ".TP\n.BR \\-f \", \" \\-\\-from \" \\fITANK\\fR\"\n"
                             "Not from this \\fITANK\\fR.\n"
                             ".TP\n.BR \\-\\-by \" \\fIWAY\\fR\"\nhand or pump\\e.\n"
                             ".TP\n.BR \\-\\-format \" \\fIFORMAT\\fR\"\ntable (default), "),
             qPrintable(page));
    QVERIFY2(page.endsWith("The help is the usage in short.\n.SH END\n"), qPrintable(page));
}

void HelpTest::theManPageNamesEverything()
{
    const QString selectorPage = page("selector", nullptr);
    QStringList wanted{"PROCESSDATA_BUS", "PROCESSDATA_DBUS_TIMEOUT_MS", "NO_COLOR", "--version"};
    for (const Command &command : commands()) {
        wanted.append(QString(".BR selector-%1 (1)\n%2\n").arg(command.name, command.summary));
    }
    for (const char *field : {"url", "status", "value", "unit", "type", "errorType", "time",
                              "timestampNs", "reason", "code", "event", "indices", "changes"}) {
        wanted.append("B " + QString(field));
    }
    for (const QString &word : qAsConst(wanted)) {
        QVERIFY2(selectorPage.contains(word), qPrintable(word));
    }
}

void HelpTest::eachCommandHasAPageThatNamesItsFlags()
{
    for (const Command &command : commands()) {
        const QString text = page("selector-" + command.name, &command);
        QVERIFY2(text.contains(QString("\nselector-%1 - %2\n").arg(command.name, command.summary)),
                 qPrintable(command.name));
        QVERIFY2(text.contains(".B selector " + command.name + '\n'), qPrintable(command.name));
        QVERIFY(text.contains(".SH EXIT STATUS\n") && text.contains(".SH EXAMPLES\n"));
        const QStringList ofHelp = flags(helpOf(command), "(?:^| )(--?[a-z][a-z-]*)");
        const QStringList ofPage = flags(text.section(".SH OPTIONS", 1).section("\n.SH ", 0, 0),
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
    const QStringList names = offerFor({""}).words;
    for (const Command &command : commands()) {
        QVERIFY2(names.contains(command.name), qPrintable(command.name));
        const QStringList offered = offerFor({command.name, "--"}).words;
        const QStringList ofHelp = flags(helpOf(command), "(?:^| )(--[a-z][a-z-]*)");
        for (const QString &flag : ofHelp) {
            QVERIFY2(offered.contains(flag), qPrintable(command.name + ' ' + flag));
        }
    }
}

QTEST_APPLESS_MAIN(HelpTest)
#include "HelpTest.moc"
