// SPDX-License-Identifier: MIT
// selector modules: who offers selectors.
#include "CatalogFindings.h"
#include "Command.h"
#include "ModuleEntries.h"
#include "NearMiss.h"

#include <QRegularExpression>

namespace {

// Says which type was probably meant, of those that modules offer and that are usual.
void hintAtType(const QString &type, const QVector<Module> &modules, const Console &console)
{
    QStringList known{QStringLiteral("AnalogSelector"), QStringLiteral("DigitalSelector")};
    for (const Module &module : modules) {
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

// The selector types of a module as its service would register them.
Module describedModule(Catalog &catalog, const QString &name, Finding &finding)
{
    Module module{name, {}};
    SelectorPattern all;
    all.level = SelectorPattern::Module;
    all.module = NamePattern({name});
    const QVector<CatalogItem> items = catalog.items(all);
    for (const CatalogItem &item : items) {
        CatalogAnswer answer = item.answer;
        if (item.kind == CatalogItem::Source) {
            const CatalogSource &source = catalog.source(item.name);
            answer = source.answer;
            for (const DescribedLeaf &leaf : source.leaves) {
                const QString type
                    = leaf.properties.value(QLatin1String("selectorType")).toString();
                if (!type.isEmpty()) {
                    module.selectorTypes.append(
                        QStringList{item.name.object, item.name.instance, type}.join(
                            QLatin1Char('/')));
                }
            }
        }
        if (finding.isNone()) {
            finding = findingOf(answer);
        }
    }
    module.selectorTypes.removeDuplicates();
    return module;
}

// Without a registry: what the modules' own descriptions say.
void addDescribed(Catalog &catalog, const QString &type, Report &report)
{
    const QStringList names = catalog.moduleNames();
    for (const QString &name : names) {
        Finding finding;
        Module module = describedModule(catalog, name, finding);
        if (!type.isEmpty()) {
            module.selectorTypes = module.selectorTypes.filter(QRegularExpression(
                QLatin1Char('/') + QRegularExpression::escape(type) + QLatin1Char('$')));
        }
        if (!finding.isNone()) {
            report.entries.append(moduleFailure(module, finding));
        } else if (type.isEmpty() || !module.selectorTypes.isEmpty()) {
            report.entries.append(moduleEntry(module));
        }
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
    Catalog catalog;
    ExitCode exitCode = ExitAllGood;
    if (!askModules(catalog, console, exitCode)) {
        return exitCode;
    }
    Report report{QStringLiteral("selector.modules/1"), moduleColumns(), {}, 0, true};
    if (catalog.note().isEmpty()) {
        const auto modules
            = line.has("type") ? modulesOfType(catalog.providerList(), type) : catalog.modules();
        for (const Module &module : modules) {
            report.entries.append(moduleEntry(module));
        }
    } else {
        addDescribed(catalog, type, report);
    }
    const int result = printReport(report, console);
    if (line.has("type") && report.entries.isEmpty()) {
        hintAtType(type, catalog.modules(), console);
    }
    return result;
}

} // namespace

Command modulesCommand()
{
    return {
        QStringLiteral("modules"),
        QStringLiteral("list the registered modules"),
        "Usage: selector modules [OPTIONS]\n"
        "Lists the modules of the provider registry and the selector types that they offer,\n"
        "each as OBJECT/INSTANCE/TYPE. Without a registry: the modules whose services run, and\n"
        "the types that their descriptions name.\n",
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
