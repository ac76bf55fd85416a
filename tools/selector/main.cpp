// SPDX-License-Identifier: MIT
// selector: reads and writes live process data from the command line.
#include "Command.h"
#include "Console.h"
#include "ExitCode.h"
#include "Help.h"
#include "InterruptExit.h"
#include "MessageLog.h"
#include "ProcessDataAccess.h"
#include "StandardStreams.h"
#include "Utf8Text.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

QString overview()
{
    QString text = QStringLiteral("Usage: selector COMMAND [OPTIONS] [ARGUMENTS]\n"
                                  "Reads and writes live process data by selector URL.\n"
                                  "\n"
                                  "Commands:\n");
    for (const Command &command : commands()) {
        text += QStringLiteral("  %1  %2\n").arg(command.name, -10).arg(command.summary);
    }
    return text
        + QStringLiteral(
               "\n"
               "Options:\n"
               "  -h, --help  print this and exit; behind a command, print the command's help\n"
               "  --version   print the version and exit\n"
               "\n"
               "Environment:\n"
               "  PROCESSDATA_BUS              system (default), session or a bus address\n"
               "  PROCESSDATA_DBUS_TIMEOUT_MS  time limit of one call to a service (2000)\n"
               "  NO_COLOR                     when set, no colour on a terminal either\n");
}

int usageError(const Console &console, const QString &text, const QString &help)
{
    console.err << "selector: " << text << "\nTry " << help << " --help.\n";
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
    exitOnInterrupt();
    const int result = command.run(line, console, error);
    if (wasInterrupted()) {
        return interruptExitCode();
    }
    return result == ExitUsage ? usageError(console, error, helpName) : result;
}

int run(const QStringList &arguments, Console &console)
{
    const QString name = arguments.value(1);
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        console.out << overview();
        return ExitAllGood;
    }
    if (name == QLatin1String("--version")) {
        console.out << "selector " TOOLS_VERSION "\n";
        return ExitAllGood;
    }
    if (name.isEmpty()) {
        return usageError(console, QStringLiteral("No command given."), QStringLiteral("selector"));
    }
    const Command *command = findCommand(name);
    if (command == nullptr) {
        return usageError(console, QStringLiteral("Unknown command %1.").arg(name),
                          QStringLiteral("selector"));
    }
    return runCommand(*command, arguments.mid(2), console);
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
