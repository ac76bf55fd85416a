// SPDX-License-Identifier: MIT
// selector properties: what descriptions say of leaves.
#include "Command.h"
#include "Diagnosis.h"
#include "Entries.h"
#include "ExactJson.h"
#include "ExitCode.h"
#include "SelectorHandlerProcessValue.h"
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
    QVector<SelectorInput> selectors;
    if (!collectSelectors(line, false, selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    const QVector<QString> urls = urlsOf(selectors);
    SelectorHandlerProcessValue handler(urls, nullptr);
    const QStringList names = line.texts("property");
    QMap<QString, QVector<QVariant>> wanted;
    for (const QString &name : names) {
        wanted.insert(name, handler.getProperties(name));
    }
    Diagnosis diagnosis;
    Report report{QStringLiteral("selector.properties/1"), propertiesColumns(), {}, valueColumn};
    for (int i = 0; i < urls.size(); ++i) {
        PropertiesResult result{urls.at(i), {}, {}};
        const QJsonObject all = exactObject(handler.getPropertyAsJsonString(i).toUtf8());
        if (all.isEmpty()) {
            result.finding = diagnosis.explain(result.url);
            if (result.finding.code == Finding::None) {
                result.finding = {Finding::NotReadable,
                                  QStringLiteral("the leaf has only just appeared, try again")};
            }
        } else if (names.isEmpty()) {
            result.properties = allProperties(all);
        } else {
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
            "Usage: selector properties [OPTIONS] URL...\n"
            "Prints what the description says of each leaf: type, unit, limits and so on.\n",
            {{"--property NAME", "only this property; may be given several times",
              "A leaf without it is a failure.", Option::Name, knownProperties},
             urlFileOption,
             quietOption,
             timeoutOption},
            "\nExample: selector properties --property unit "
            "processdata://PumpStation/Pump/1/drive/speed\n",
            {Arguments::Url, Arguments::many},
            run};
}
