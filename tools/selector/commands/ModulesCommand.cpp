// SPDX-License-Identifier: MIT
// selector modules: who offers selectors.
#include "Command.h"
#include "ModuleEntries.h"

namespace {

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (!line.arguments.isEmpty()) {
        usage = QStringLiteral("Unexpected argument %1.").arg(line.arguments.constFirst());
        return ExitUsage;
    }
    if (line.hasType && (line.type.isEmpty() || line.type.contains(QLatin1Char('/')))) {
        usage = QStringLiteral("--type must be a bare name such as AnalogSelector, not \"%1\"")
                    .arg(line.type);
        return ExitUsage;
    }
    QString list;
    ExitCode exitCode = ExitAllGood;
    if (!fetchModules(console, list, exitCode)) {
        return exitCode;
    }
    return printReport(
        {QStringLiteral("selector.modules/1"), moduleColumns(),
         moduleEntries(line.hasType ? modulesOfType(list, line.type) : modulesOfList(list)), 0,
         true},
        console);
}

} // namespace

Command modulesCommand()
{
    return {
        QStringLiteral("modules"), QStringLiteral("list the registered modules"),
        QStringLiteral(
            "Usage: selector modules [OPTIONS]\n"
            "Lists the modules of the provider registry and the selector types that they offer,\n"
            "each as OBJECT/INSTANCE/TYPE.\n"
            "\n"
            "Options:\n"
            "  --type TYPE      only this type: AnalogSelector, DigitalSelector\n"
            "  -q, --quiet      print names of modules only\n"
            "  --timeout S      seconds for all calls together; else 2 for each call\n")
            + commonOptionsHelp()
            + QStringLiteral("\nExample: selector modules --type DigitalSelector\n"),
        OptionType | OptionQuiet, run};
}
