// SPDX-License-Identifier: MIT
// Renders lists of options, as plain text and as roff.
#include "Help.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int screenWidth = 80;
constexpr int usualColumn = 19;
constexpr int blanksOfHead = 4; // two on each side

QStringList linesOf(const Option &option)
{
    return QString::fromLatin1(option.text).split(QLatin1Char('\n'));
}

// Several lines stand below each other, whatever the head; a single one may begin further right.
int columnOf(const QVector<Option> &options)
{
    int column = usualColumn;
    for (const Option &option : options) {
        if (linesOf(option).size() > 1) {
            column = std::max(column, static_cast<int>(qstrlen(option.head)) + blanksOfHead);
        }
    }
    return column;
}

// The same words in lines that fit. Lines that all fit already stay as they are.
QStringList fitted(const QStringList &lines, int width)
{
    if (std::all_of(lines.begin(), lines.end(),
                    [width](const QString &line) { return line.size() <= width; })) {
        return lines;
    }
    QStringList result;
    QString last;
    const QStringList words
        = lines.join(QLatin1Char(' ')).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : words) {
        if (!last.isEmpty() && last.size() + 1 + word.size() > width) {
            result.append(last);
            last.clear();
        }
        last += last.isEmpty() ? word : QLatin1Char(' ') + word;
    }
    result.append(last);
    return result;
}

// Paragraphs of prose that fit the screen; what a reader may type keeps its lines.
QString fittedProse(const QString &text)
{
    QStringList paragraphs;
    const QStringList all = text.split(QStringLiteral("\n\n"));
    for (const QString &paragraph : all) {
        QStringList lines = paragraph.split(QLatin1Char('\n'));
        const bool ends = paragraph.endsWith(QLatin1Char('\n'));
        if (ends) {
            lines.removeLast(); // what follows the end of the last line
        }
        const bool isExample = paragraph.trimmed().startsWith(QLatin1String("Example:"));
        int typed = isExample ? lines.size() : 0;
        while (typed < lines.size()
               && (lines.at(typed).startsWith(QLatin1String("Usage:"))
                   || lines.at(typed).startsWith(QLatin1Char(' ')))) {
            ++typed;
        }
        const QStringList prose = fitted(lines.mid(typed), screenWidth);
        paragraphs.append((lines.mid(0, typed) + prose).join(QLatin1Char('\n'))
                          + (ends ? QStringLiteral("\n") : QString()));
    }
    return paragraphs.join(QStringLiteral("\n\n"));
}

QString listOf(const QVector<Option> &options)
{
    const int column = columnOf(options);
    const QString nextLine = QLatin1Char('\n') + QString(column, QLatin1Char(' '));
    QString text;
    for (const Option &option : options) {
        const QString head = QStringLiteral("  %1  ").arg(QLatin1String(option.head));
        if (*option.text != '\0') {
            const int width = screenWidth - std::max(column, head.size());
            text += head.leftJustified(column) + fitted(linesOf(option), width).join(nextLine)
                + QLatin1Char('\n');
        }
    }
    return text;
}

QString inRoff(QString text)
{
    return text.replace(QLatin1Char('\\'), QLatin1String("\\e"))
        .replace(QLatin1Char('-'), QLatin1String("\\-"))
        .replace(QLatin1Char('\''), QLatin1String("\\(aq"));
}

// As sentences; a word that may be the option's value keeps its small letter.
QString sentencesOf(const Option &option)
{
    QString text = linesOf(option).join(QLatin1Char(' '));
    if (text.isEmpty()) {
        return inRoff(QLatin1String(option.more));
    }
    const QStringList words = QString::fromLatin1(option.words).split(QLatin1Char(' '));
    if (!words.contains(text.section(QLatin1Char(' '), 0, 0))) {
        text[0] = text.at(0).toUpper();
    }
    return inRoff(QStringLiteral("%1. %2").arg(text, QLatin1String(option.more)).trimmed());
}

QString roffOf(const Option &option)
{
    QString head = inRoff(QStringLiteral("--") + option.name());
    if (!option.letter().isEmpty()) {
        head.prepend(QStringLiteral("\\-%1 \", \" ").arg(option.letter()));
    }
    QString text = sentencesOf(option);
    if (!option.value().isEmpty()) {
        const QString value = QStringLiteral("\\fI%1\\fR").arg(option.value());
        head += QStringLiteral(" \" %1\"").arg(value);
        text.replace(QRegularExpression(QStringLiteral("\\b%1\\b").arg(option.value())), value);
    }
    return QStringLiteral(".TP\n.BR %1\n%2\n").arg(head, text);
}

QString beginningOf(const Command &command)
{
    const QString start = QStringLiteral("Usage: selector %1 ").arg(command.name);
    const QString arguments
        = QString::fromLatin1(command.usage).section(QLatin1Char('\n'), 0, 0).mid(start.size());
    static const QRegularExpression placeholder(QStringLiteral("([A-Z]+)"));
    return QStringLiteral(".TH SELECTOR\\-%1 1 \"\" \"selector\" \"User Commands\"\n"
                          ".SH NAME\nselector\\-%2 \\- %3\n"
                          ".SH SYNOPSIS\n.B selector %2\n%4\n")
        .arg(command.name.toUpper(), command.name, command.summary,
             inRoff(arguments).replace(placeholder, QStringLiteral("\\fI\\1\\fR")));
}

} // namespace

QString commandList()
{
    QString text = QStringLiteral("Commands:\n");
    for (const Command &command : commands()) {
        text += QStringLiteral("  %1  %2\n").arg(command.name, -10).arg(command.summary);
    }
    return text;
}

QString overview()
{
    return QStringLiteral("Usage: selector [OPTIONS] COMMAND [OPTIONS] [ARGUMENTS]\n"
                          "       selector help [COMMAND]\n"
                          "Reads and writes live process data by selector URL.\n"
                          "\n")
        + commandList()
        + QStringLiteral("\nOptions of all commands, before or behind the command:\n")
        + listOf(commonOptions())
        + QStringLiteral(
               "  --version        print the version and exit; without a command\n"
               "\n"
               "Environment:\n"
               "  PROCESSDATA_BUS              system (default), session or a bus address\n"
               "  PROCESSDATA_DBUS_TIMEOUT_MS  time limit of one call to a service (2000)\n"
               "  NO_COLOR                     when set, no colour on a terminal either\n");
}

QString helpOf(const Command &command)
{
    return fittedProse(QLatin1String(command.usage)) + QStringLiteral("\nOptions:\n")
        + listOf(command.options) + listOf(commonOptions(command.options))
        + QStringLiteral(
               "\n"
               "Exit codes: 0 all good, 1 something failed (its row says why), 2 wrong usage,\n"
               "3 the system is out of reach, 4 no answer within the time limit, 5 permission\n"
               "is missing, 130 interrupted.\n")
        + fittedProse(QLatin1String(command.ending));
}

QString manualPage(QString text, const Command *command)
{
    QString options;
    const auto own = command == nullptr ? QVector<Option>() : command->options;
    const auto all = own + commonOptions(own);
    for (const Option &option : all) {
        options += roffOf(option);
    }
    QString list;
    for (const Command &one : commands()) {
        list += QStringLiteral(".TP\n.BR selector\\-%1 (1)\n%2\n").arg(one.name, one.summary);
    }
    if (command != nullptr) {
        text.insert(text.indexOf(QLatin1Char('\n')) + 1, beginningOf(*command));
    }
    return text.replace(QLatin1String(".\\\" OPTIONS\n"), options)
        .replace(QLatin1String(".\\\" COMMANDS\n"), list);
}
