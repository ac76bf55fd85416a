// SPDX-License-Identifier: MIT
// selector browse: from modules down to leaves.
#include "BrowseTree.h"
#include "CatalogFindings.h"
#include "Command.h"
#include "Entries.h"
#include "Examination.h"
#include "ExitCode.h"
#include "ModuleEntries.h"

namespace {

int browseSystem(Catalog &catalog, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"), columnsOf("module note"), {}, 0, true};
    for (const Module &module : catalog.modules()) {
        Entry entry = moduleEntry(module);
        entry.json.remove(QStringLiteral("selectorTypeList"));
        entry.rows = {{module.name, entry.reason}};
        report.entries.append(entry);
    }
    return printReport(report, console);
}

Entry instanceEntry(const SourceName &name)
{
    Entry entry = entryOf(name.toString(), {});
    entry.json.insert(QStringLiteral("module"), name.module);
    entry.json.insert(QStringLiteral("object"), name.object);
    entry.json.insert(QStringLiteral("instance"), name.instance);
    entry.rows.append({entry.subject, name.module, name.object, name.instance, QString()});
    return entry;
}

int browseInstances(Catalog &catalog, const SelectorPattern &place, const QString &text,
                    const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"),
                  columnsOf("place module object instance note"),
                  {},
                  0,
                  true};
    const QVector<CatalogItem> items = catalog.items(place);
    for (const CatalogItem &item : items) {
        if (item.kind == CatalogItem::Source) {
            report.entries.append(instanceEntry(item.name));
        } else if (!item.answer.isOk()) {
            report.entries.append(
                browseFailure(item.toString(), findingOf(item.answer), report.columns.size()));
        }
    }
    if (report.entries.isEmpty() && place.hasStars()) {
        report.entries.append(
            browseFailure(text, missOf(catalog.match(place)), report.columns.size()));
    }
    return printReport(report, console);
}

// What stands in the way to one source is examined; of many only what is asked.
int browseSource(const SelectorPattern &place, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"), leafColumns(), {}, 0, true};
    const Examination source
        = examine({place.module.toString(), place.object.toString(), place.instance.toString()});
    const QString name = source.source.toString();
    // A description whose memory cannot be attached still names the leaves.
    if (source.description.isEmpty()) {
        report.entries.append(browseFailure(name, source.reason, report.columns.size()));
        return printReport(report, console);
    }
    const auto leaves = leavesBelow(source.description, place.pathText());
    for (const DescribedLeaf &leaf : leaves) {
        report.entries.append(
            leafEntry(CatalogLeaf{source.source, leaf.path}.url(), leaf.path, leaf.properties));
    }
    if (report.entries.isEmpty() && !place.path.isEmpty()) {
        report.entries.append(
            browseFailure(name + QLatin1Char('/') + place.pathText(),
                          {Finding::NoSuchLeaf, QStringLiteral("%1 has no such group").arg(name)},
                          report.columns.size()));
    }
    return printReport(report, console);
}

bool parsePlace(const CommandLine &line, SelectorPattern &place, QString &usage)
{
    if (line.arguments.size() > 1) {
        usage = QStringLiteral("Unexpected argument %1.").arg(line.arguments.at(1));
        return false;
    }
    if (!line.arguments.isEmpty()
        && !SelectorPattern::parse(line.arguments.constFirst(), place, usage)) {
        return false;
    }
    const bool leaves
        = line.has("recursive") || place.below || place.level == SelectorPattern::Source;
    if (line.has("values") && !leaves) {
        usage = QStringLiteral("--values shows values of leaves: name an instance or a group, or "
                               "add --recursive.");
        return false;
    }
    return true;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    SelectorPattern place;
    if (!parsePlace(line, place, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    Catalog catalog;
    ExitCode exitCode = ExitAllGood;
    if (place.needsModules() && !askModules(catalog, console, exitCode)) {
        return exitCode;
    }
    const bool tree = line.has("recursive");
    if (tree || line.has("values") || place.below
        || (place.level == SelectorPattern::Source && place.hasStars())) {
        const bool drawn = tree && line.format == Format::Table && !line.has("quiet");
        return printReport(browseReport(catalog, place, {drawn, line.has("values")}), console);
    }
    switch (place.level) {
    case SelectorPattern::System:
        return browseSystem(catalog, console);
    case SelectorPattern::Module:
    case SelectorPattern::Object:
        return browseInstances(catalog, place, line.arguments.constFirst(), console);
    case SelectorPattern::Source:
        break;
    }
    return browseSource(place, console);
}

} // namespace

Command browseCommand()
{
    return {QStringLiteral("browse"),
            QStringLiteral("find modules, instances and leaves"),
            "Usage: selector browse [OPTIONS] [MODULE[/OBJECT[/INSTANCE[/GROUP]]]]\n"
            "Lists modules; the instances of a module or an object; the leaves of an instance or\n"
            "a group with their URLs. MODULE/OBJECT/ names the instance without a name. In each\n"
            "part * stands for any characters, and ** as the last part for everything below.\n",
            {{"-r, --recursive", "draw all that is below as a tree, down to the leaves",
              "JSON, CSV and --quiet list the leaves alone."},
             {"--values", "show each leaf's current value too"},
             {"-q, --quiet", "print names of modules, places of instances, URLs of leaves only",
              "One a line, without header; no line for what failed. Not with --format."},
             timeoutOption},
            "\nExample: selector browse PumpStation/Pump/1\n",
            {Arguments::Place, 1},
            run};
}
