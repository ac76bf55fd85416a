// SPDX-License-Identifier: MIT
// selector browse: from modules down to leaves.
#include "Command.h"
#include "Entries.h"
#include "Examination.h"
#include "ExitCode.h"
#include "ModuleEntries.h"
#include "SelectorUrlBuilder.h"
#include "SourceList.h"

namespace {

Entry failure(const QString &subject, const Finding &finding, int columns)
{
    Entry entry = entryOf(subject, finding);
    entry.json.insert(QStringLiteral("place"), subject);
    Row row(columns, Cell(QString()));
    row.first() = subject;
    row.last() = finding.text;
    entry.rows.append(row);
    return entry;
}

int browseSystem(const Console &console)
{
    QString list;
    ExitCode exitCode = ExitAllGood;
    if (!fetchModules(console, list, exitCode)) {
        return exitCode;
    }
    Report report{QStringLiteral("selector.browse/1"), columnsOf("module note"), {}, 0, true};
    const QVector<Module> modules = modulesOfList(list);
    for (const Module &module : modules) {
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

int browseInstances(const BrowsePlace &place, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"),
                  columnsOf("place module object instance note"),
                  {},
                  0,
                  true};
    QVector<ListedSource> sources;
    Finding ignored; // a module or an object is listed without the registry
    listSources(place, sources, ignored);
    for (const ListedSource &source : qAsConst(sources)) {
        const SourceName &name = source.name;
        const QString known
            = name.object.isEmpty() ? name.module : name.module + QLatin1Char('/') + name.object;
        report.entries.append(source.finding.isNone()
                                  ? instanceEntry(name)
                                  : failure(known, source.finding, report.columns.size()));
    }
    return printReport(report, console);
}

int browseLeaves(const BrowsePlace &place, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"), leafColumns(), {}, 0, true};
    const Examination source = examine({place.module, place.object, place.instance});
    const QString name = source.source.toString();
    // A description whose memory cannot be attached still names the leaves.
    if (source.description.isEmpty()) {
        report.entries.append(failure(name, source.reason, report.columns.size()));
        return printReport(report, console);
    }
    const QVector<DescribedLeaf> leaves = leavesBelow(source.description, place.group);
    for (const DescribedLeaf &leaf : leaves) {
        report.entries.append(
            leafEntry(selectorUrl(place.module, place.object, place.instance, leaf.path), leaf.path,
                      leaf.properties));
    }
    if (report.entries.isEmpty() && !place.group.isEmpty()) {
        report.entries.append(
            failure(name + QLatin1Char('/') + place.group,
                    {Finding::NoSuchLeaf, QStringLiteral("%1 has no such group").arg(name)},
                    report.columns.size()));
    }
    return printReport(report, console);
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    BrowsePlace place;
    if (line.arguments.size() > 1) {
        usage = QStringLiteral("Unexpected argument %1.").arg(line.arguments.at(1));
        return ExitUsage;
    }
    if (!line.arguments.isEmpty() && !parseBrowsePlace(line.arguments.constFirst(), place, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    switch (place.level) {
    case BrowsePlace::System:
        return browseSystem(console);
    case BrowsePlace::Module:
    case BrowsePlace::Object:
        return browseInstances(place, console);
    case BrowsePlace::Instance:
        break;
    }
    return browseLeaves(place, console);
}

} // namespace

Command browseCommand()
{
    return {QStringLiteral("browse"),
            QStringLiteral("find modules, instances and leaves"),
            "Usage: selector browse [OPTIONS] [MODULE[/OBJECT[/INSTANCE[/GROUP]]]]\n"
            "Lists modules; the instances of a module or an object; the leaves of an instance or\n"
            "a group with their URLs. MODULE/OBJECT/ names the instance without a name.\n",
            {{"-q, --quiet", "print names of modules, places of instances, URLs of leaves only",
              "One a line, without header; no line for what failed. Not with --format."},
             timeoutOption},
            "\nExample: selector browse PumpStation/Pump/1\n",
            {Arguments::Place, 1},
            run};
}
