// SPDX-License-Identifier: MIT
// The table of subcommands and what they share.
#include "Command.h"

#include "Catalog.h"
#include "MessageLog.h"
#include "ProcessDataAccess.h"
#include "SystemStatusManagerDBusConnector.h"

#include <algorithm>

using ProcessDataAccess::Result;

const QVector<Command> &commands()
{
    static const QVector<Command> table
        = QVector<Command>{modulesCommand(), browseCommand(),     readCommand(),    writeCommand(),
                           watchCommand(),   propertiesCommand(), explainCommand(), doctorCommand(),
                           checkCommand(),   snapshotCommand(),   diffCommand(),    applyCommand()}
        + historyCommands() + QVector<Command>{completeCommand()};
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

bool askModules(Catalog &catalog, const Console &console, ExitCode &exitCode)
{
    const CatalogAnswer answer = catalog.askModules();
    const QString &said = answer.isOk() ? catalog.note() : answer.text;
    if (!said.isEmpty()) {
        console.err << "selector: " << printable(said) << '\n';
        console.err.flush();
    }
    exitCode = answer.isOk()                    ? ExitAllGood
        : answer.result == Result::TimedOut     ? ExitTimeLimit
        : answer.result == Result::Denied       ? ExitDenied
        : answer.result == Result::NotSupported ? ExitSomeFailed
                                                : ExitNotReachable;
    return answer.isOk();
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
