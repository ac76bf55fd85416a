// SPDX-License-Identifier: MIT
// The table of subcommands and what they share.
#include "Command.h"

#include "MessageLog.h"
#include "SystemStatusManagerDBusConnector.h"

#include <algorithm>

const QVector<Command> &commands()
{
    static const QVector<Command> table{modulesCommand(), browseCommand(), readCommand(),
                                        writeCommand(),   watchCommand(),  propertiesCommand(),
                                        explainCommand(), checkCommand(),  snapshotCommand(),
                                        diffCommand(),    applyCommand()};
    return table;
}

const Command *findCommand(const QString &name)
{
    const auto &all = commands();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Command &command) { return command.name == name; });
    return found == all.end() ? nullptr : &*found;
}

QString commonOptionsHelp()
{
    return QStringLiteral(
        "  --format FORMAT  table (default), json or csv\n"
        "  -v, --verbose    also print the libraries' warnings on standard error\n"
        "  -h, --help       print this and exit\n"
        "\n"
        "Exit codes: 0 all good, 1 something failed (its row says why),\n"
        "2 wrong usage, 3 the system is out of reach.\n");
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
