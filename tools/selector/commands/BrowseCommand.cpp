// SPDX-License-Identifier: MIT
// selector browse: from modules down to leaves.
#include "BrowsePlace.h"
#include "Command.h"
#include "DescriptionLeaves.h"
#include "Diagnosis.h"
#include "Entries.h"
#include "ExactJson.h"
#include "ExitCode.h"
#include "InstanceListClient.h"
#include "ModuleEntries.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlBuilder.h"

#include <utility>

namespace {

Entry failure(const QString &subject, const Finding &finding, int columns)
{
    const QString reason = finding.text;
    Entry entry;
    entry.subject = subject;
    entry.reason = reason;
    entry.failure = finding.exitCode();
    entry.state = Entry::Failed;
    entry.json = {{QStringLiteral("place"), subject},
                  {QStringLiteral("status"), QStringLiteral("failed")},
                  {QStringLiteral("code"), finding.codeName()},
                  {QStringLiteral("reason"), reason}};
    Row row(columns, Cell(QString()));
    row.first() = subject;
    row.last() = reason;
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
    Report report{QStringLiteral("selector.browse/1"),
                  {{QStringLiteral("module")}, {QStringLiteral("note")}},
                  {},
                  0,
                  true};
    report.entries = moduleEntries(modulesOfList(list));
    for (Entry &entry : report.entries) {
        entry.json.remove(QStringLiteral("selectorTypeList"));
        entry.rows = {{entry.rows.constFirst().constFirst(), entry.reason}};
    }
    return printReport(report, console);
}

void addInstances(const QString &module, const QString &object, Report &report)
{
    QStringList instances;
    QString error;
    const BusQueryResult result = fetchInstances(module, object, instances, error);
    if (result != BusQueryResult::Ok) {
        report.entries.append(failure(module + QLatin1Char('/') + object,
                                      Diagnosis::explainQuery(result, error),
                                      report.columns.size()));
        return;
    }
    for (const QString &instance : std::as_const(instances)) {
        Entry entry;
        entry.subject = QStringLiteral("%1/%2/%3").arg(module, object, instance);
        entry.json = {{QStringLiteral("module"), module},
                      {QStringLiteral("object"), object},
                      {QStringLiteral("instance"), instance},
                      {QStringLiteral("status"), QStringLiteral("ok")}};
        entry.rows.append({entry.subject, module, object, instance, QString()});
        report.entries.append(entry);
    }
}

int browseInstances(const BrowsePlace &place, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"),
                  {{QStringLiteral("place")},
                   {QStringLiteral("module")},
                   {QStringLiteral("object")},
                   {QStringLiteral("instance")},
                   {QStringLiteral("note")}},
                  {},
                  0,
                  true};
    QStringList objects{place.object};
    QString error;
    if (place.level == BrowsePlace::Module) {
        objects.clear();
        const BusQueryResult result = fetchObjects(place.module, objects, error);
        if (result != BusQueryResult::Ok) {
            report.entries.append(failure(place.module, Diagnosis::explainQuery(result, error),
                                          report.columns.size()));
        }
    }
    for (const QString &object : qAsConst(objects)) {
        addInstances(place.module, object, report);
    }
    return printReport(report, console);
}

int browseLeaves(const BrowsePlace &place, const Console &console)
{
    Report report{QStringLiteral("selector.browse/1"), leafColumns(), {}, 0, true};
    const QString name = QStringLiteral("%1/%2/%3").arg(place.module, place.object, place.instance);
    QSharedPointer<SelectorSharedMemoryHandler> source;
    const Finding finding
        = Diagnosis::explainSource(place.module, place.object, place.instance, source);
    // A description whose memory cannot be attached still names the leaves.
    const QVariant description = source->getProcessDescription();
    if (!description.isValid()) {
        report.entries.append(failure(name, finding, report.columns.size()));
        return printReport(report, console);
    }
    const QJsonObject document = exactObject(description.toString().toUtf8());
    const QVector<DescribedLeaf> leaves = leavesBelow(document, place.group);
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
