// SPDX-License-Identifier: MIT
// The table of subcommands and what they share.
#include "Command.h"

#include "MessageLog.h"
#include "ProcessDataAccess.h"
#include "SystemStatusManagerDBusConnector.h"

#include <algorithm>

using ProcessDataAccess::Result;

const QVector<Command> &commands()
{
    static const QVector<Command> table{
        modulesCommand(),    browseCommand(),  readCommand(),    writeCommand(), watchCommand(),
        propertiesCommand(), explainCommand(), doctorCommand(),  checkCommand(), snapshotCommand(),
        diffCommand(),       applyCommand(),   completeCommand()};
    return table;
}

const Command *findCommand(const QString &name)
{
    const auto &all = commands();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Command &command) { return command.name == name; });
    return found == all.end() ? nullptr : &*found;
}

QStringList commandNames()
{
    QStringList names;
    for (const Command &command : commands()) {
        names.append(command.name);
    }
    return names;
}

int commandPosition(const QStringList &arguments)
{
    QVector<Option> options = commonOptions();
    for (const Command &command : commands()) {
        options += command.options;
    }
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &word = arguments.at(i);
        if (!word.startsWith(QLatin1Char('-')) || word.size() == 1 || isNumber(word)) {
            return i;
        }
        const bool valueFollows
            = std::any_of(options.begin(), options.end(), [&](const Option &option) {
                  return !option.value().isEmpty() && option.spellings().contains(word);
              });
        i += valueFollows ? 1 : 0;
    }
    return -1;
}

bool fetchModules(const Console &console, QString &providerList, ExitCode &exitCode)
{
    QString error;
    const Result result = ProcessDataAccess::fetchProviderList(providerList, error);
    if (result == Result::Ok) {
        return true;
    }
    console.err << "selector: " << printable(error) << '\n';
    console.err.flush();
    exitCode = result == Result::TimedOut ? ExitTimeLimit
        : result == Result::Denied        ? ExitDenied
        : result == Result::NotSupported  ? ExitSomeFailed
                                          : ExitNotReachable;
    return false;
}

bool busIsReachable(const Console &console)
{
    if (!SystemStatusManagerDBusConnector::createAndConnect().isNull()) {
        return true;
    }
    const QStringList warnings = MessageLog::takeWarnings();
    const QString reason
        = warnings.isEmpty() ? QStringLiteral("The bus is out of reach") : warnings.constFirst();
    console.err << "selector: " << printable(reason) << " (PROCESSDATA_BUS chooses the bus)\n";
    console.err.flush();
    return false;
}
