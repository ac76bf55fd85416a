// SPDX-License-Identifier: MIT
// selector modules: who offers selectors.
#include "Command.h"
#include "ModuleEntries.h"
#include "NearMiss.h"

namespace {

// Says which type was probably meant, of those that modules offer and that are usual.
void hintAtType(const QString &type, const QString &list, const Console &console)
{
    QStringList known{QStringLiteral("AnalogSelector"), QStringLiteral("DigitalSelector")};
    const QVector<Module> all = modulesOfList(list);
    for (const Module &module : all) {
        for (const QString &selector : module.selectorTypes) {
            known.append(selector.section(QLatin1Char('/'), -1));
        }
    }
    const QString hint = didYouMean(type, known);
    if (!hint.isEmpty()) {
        printReason(QString(),
                    QStringLiteral("no module offers the type \"%1\"; %2").arg(type, hint),
                    console);
    }
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (!line.arguments.isEmpty()) {
        usage = QStringLiteral("Unexpected argument %1.").arg(line.arguments.constFirst());
        return ExitUsage;
    }
    const QString type = line.text("type");
    if (line.has("type") && (type.isEmpty() || type.contains(QLatin1Char('/')))) {
        usage = QStringLiteral("--type must be a bare name such as AnalogSelector, not \"%1\"")
                    .arg(type);
        return ExitUsage;
    }
    QString list;
    ExitCode exitCode = ExitAllGood;
    if (!fetchModules(console, list, exitCode)) {
        return exitCode;
    }
    Report report{QStringLiteral("selector.modules/1"), moduleColumns(), {}, 0, true};
    const auto modules = line.has("type") ? modulesOfType(list, type) : modulesOfList(list);
    for (const Module &module : modules) {
        report.entries.append(moduleEntry(module));
    }
    const int result = printReport(report, console);
    if (line.has("type") && modules.isEmpty()) {
        hintAtType(type, list, console);
    }
    return result;
}

} // namespace

Command modulesCommand()
{
    return {QStringLiteral("modules"),
            QStringLiteral("list the registered modules"),
            "Usage: selector modules [OPTIONS]\n"
            "Lists the modules of the provider registry and the selector types that they offer,\n"
            "each as OBJECT/INSTANCE/TYPE.\n",
            {{"--type TYPE", "only this type: AnalogSelector, DigitalSelector",
              "Lists the modules that offer such selectors, with these alone.", Option::Text,
              "AnalogSelector DigitalSelector"},
             {"-q, --quiet", "print names of modules only",
              "One a line, without header. Not with --format."},
             timeoutOption},
            "\nExample: selector modules --type DigitalSelector\n",
            {},
            run};
}
