// SPDX-License-Identifier: MIT
// selector properties: what descriptions say of leaves.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "Selection.h"
#include "SelectorList.h"

#include <QMap>

namespace {

QVector<QPair<QString, QVariant>> allProperties(const QJsonObject &object)
{
    QVector<QPair<QString, QVariant>> properties;
    for (auto property = object.begin(); property != object.end(); ++property) {
        properties.append({property.key(), property.value().toVariant()});
    }
    return properties;
}

constexpr int valueColumn = 2;

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> typed;
    if (!collectSelectors(line, LineForm::Url, typed, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    const std::unique_ptr<LiveLeaves> live = findLeaves(selection);
    LiveLeaves &leaves = *live;
    const QVector<ListLine> &selectors = selection.lines();
    const QStringList names = line.texts("property");
    QMap<QString, QVector<QVariant>> wanted;
    for (const QString &name : names) {
        wanted.insert(name, leaves.handler().getProperties(name));
    }
    Report report{QStringLiteral("selector.properties/1"), propertiesColumns(), {}, valueColumn};
    for (int i = 0; i < selectors.size(); ++i) {
        const Finding miss = selection.finding(i);
        const FoundLeaf leaf = miss.isNone() ? leaves.find(i) : FoundLeaf{miss, {}};
        PropertiesResult result{
            selectors.at(i).url, {}, leaf.finding, selectors.at(i).label, leaf.properties.keys()};
        if (names.isEmpty()) {
            result.properties = allProperties(leaf.properties);
        } else if (leaf.finding.isNone()) {
            for (const QString &name : names) {
                result.properties.append({name, wanted.value(name).at(i)});
            }
        }
        report.entries.append(propertiesEntry(result));
    }
    return printReport(report, console);
}

} // namespace

Command propertiesCommand()
{
    return {QStringLiteral("properties"),
            QStringLiteral("print the properties of leaves"),
            "Usage: selector properties [OPTIONS] [NAME=]SELECTOR...\n"
            "Prints what the description says of each leaf: type, unit, limits and so on.\n",
            {{"--property NAME", "only this property; may be given several times",
              "A leaf without it is a failure.", Option::Name, knownProperties},
             urlFileOption,
             quietOption,
             timeoutOption},
            "\nExample: selector properties --property unit "
            "PumpStation/Pump/1/drive/speed\n",
            {Arguments::Url, Arguments::many},
            run};
}
