// SPDX-License-Identifier: MIT
// selector: reads and writes live process data from the command line.
#include "Command.h"
#include "Console.h"
#include "ExitCode.h"
#include "Help.h"
#include "InterruptExit.h"
#include "MessageLog.h"
#include "NearMiss.h"
#include "PrintableText.h"
#include "ProcessDataAccess.h"
#include "StandardStreams.h"
#include "Utf8Text.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

// Some of the text may be from files.
int usageError(const Console &console, const QString &text, const QString &help)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        line = printable(line);
    }
    console.err << "selector: " << lines.join(QLatin1Char('\n')) << "\nTry " << help
                << " --help.\n";
    return ExitUsage;
}

int runCommand(const Command &command, const QStringList &arguments, Console &console)
{
    const QString helpName = QStringLiteral("selector ") + command.name;
    CommandLine line;
    QString error;
    if (!parseCommandLine(arguments, command.options, line, error)) {
        return usageError(console, error, helpName);
    }
    if (line.has("help")) {
        console.out << helpOf(command);
        return ExitAllGood;
    }
    if (line.has("timeout")) {
        ProcessDataAccess::setCallDeadline(line.number("timeout"));
        // Where only calls take time, each may take all of it.
        const auto &options = command.options;
        if (std::none_of(options.begin(), options.end(), [](const Option &option) {
                return option.kind == Option::Milliseconds;
            })) {
            ProcessDataAccess::setCallTimeLimit(line.number("timeout"));
        }
    }
    MessageLog::install(QStringLiteral("selector"), QStringLiteral("selector.cli"),
                        line.has("verbose") ? MessageLog::AllMessages : MessageLog::OwnMessages);
    fitToTerminal(console, line.format);
    console.style.width = line.number("width", console.style.width);
    console.style.legend = !line.has("no-legend");
    console.style.quiet = line.has("quiet");
    console.silentReasons = console.silentReasons && !console.style.quiet;
    exitOnInterrupt();
    const int result = command.run(line, console, error);
    if (wasInterrupted()) {
        return interruptExitCode();
    }
    return result == ExitUsage ? usageError(console, error, helpName) : result;
}

int unknownCommand(const QString &name, Console &console)
{
    const QString hint = didYouMean(name, commandNames() + QStringList{QStringLiteral("help")});
    return usageError(console,
                      hint.isEmpty() ? QStringLiteral("Unknown command %1.").arg(name)
                                     : QStringLiteral("Unknown command %1; %2").arg(name, hint),
                      QStringLiteral("selector"));
}

// selector help [COMMAND]
int help(const QStringList &arguments, Console &console)
{
    CommandLine line;
    QString error;
    if (!parseCommandLine(arguments, {}, line, error)) {
        return usageError(console, error, QStringLiteral("selector"));
    }
    if (line.arguments.size() > 1) {
        return usageError(console,
                          QStringLiteral("Unexpected argument %1.").arg(line.arguments.at(1)),
                          QStringLiteral("selector"));
    }
    const QString name = line.arguments.value(0);
    const Command *command = findCommand(name);
    if (!name.isEmpty() && command == nullptr) {
        return unknownCommand(name, console);
    }
    console.out << (command == nullptr ? overview() : helpOf(*command));
    return ExitAllGood;
}

int withoutCommand(const QStringList &options, Console &console)
{
    CommandLine line;
    QString error;
    if (!parseCommandLine(options, {}, line, error)) {
        return usageError(console, error, QStringLiteral("selector"));
    }
    if (line.has("help")) {
        console.out << overview();
        return ExitAllGood;
    }
    return usageError(console, QStringLiteral("No command given.\n\n") + commandList(),
                      QStringLiteral("selector"));
}

int run(QStringList arguments, Console &console)
{
    arguments.removeFirst(); // the program's own name
    if (arguments.value(0) == QLatin1String("--version")) {
        console.out << "selector " TOOLS_VERSION "\n";
        return ExitAllGood;
    }
    const int position = commandPosition(arguments);
    if (position < 0) {
        return withoutCommand(arguments, console);
    }
    const QString name = arguments.takeAt(position);
    if (name == QLatin1String("help")) {
        return help(arguments, console);
    }
    const Command *command = findCommand(name);
    return command == nullptr ? unknownCommand(name, console)
                              : runCommand(*command, arguments, console);
}

// As UTF-8 in every locale: Qt would replace what the locale's own encoding does not have.
bool readArguments(int count, char *values[], QStringList &arguments, const Console &console)
{
    for (int i = 0; i < count; ++i) {
        const auto text = textFromUtf8(values[i]);
        if (!text) {
            console.err << "selector: argument " << i << " is not UTF-8 text\n";
            return false;
        }
        arguments.append(*text);
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    reserveStandardStreams();
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    out.setCodec("UTF-8");
    err.setCodec("UTF-8");
    Console console{out, err, {}, false};
    QStringList arguments;
    if (!readArguments(argc, argv, arguments, console)) {
        return ExitUsage;
    }
    const int result = run(arguments, console);
    if (flushResults(console)) {
        return result;
    }
    printReason({}, lostResultsReason(console), console);
    return result == ExitAllGood ? ExitSomeFailed : result;
}
