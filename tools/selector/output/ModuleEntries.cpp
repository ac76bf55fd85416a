// SPDX-License-Identifier: MIT
// Reads lists of registered providers with the library's own functions.
#include "ModuleEntries.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "JsonFunctions.h"
#include "SelectorHandlerConvenienceFunctions.h"
#include "SystemInformationManagerRegistryDefinitions.h"

namespace {

Entry moduleEntry(const QString &name, const QStringList &selectorTypes)
{
    Entry entry;
    entry.subject = name;
    entry.json = {{QStringLiteral("module"), name},
                  {QStringLiteral("status"), QStringLiteral("ok")},
                  {QStringLiteral("selectorTypeList"), QJsonArray::fromStringList(selectorTypes)}};
    for (const QString &selectorType : selectorTypes) {
        entry.rows.append({name, selectorType, QString()});
    }
    if (name.isNull()) {
        entry.state = Entry::Failed;
        entry.subject = QStringLiteral("provider list");
        entry.reason = QStringLiteral("a module without a readable name");
        entry.json.insert(QStringLiteral("status"), QStringLiteral("failed"));
        entry.json.insert(QStringLiteral("reason"), entry.reason);
    }
    if (entry.rows.isEmpty()) {
        entry.rows.append({name, QString(), QString()});
    }
    for (Row &row : entry.rows) {
        row[2] = entry.reason;
    }
    return entry;
}

} // namespace

QVector<Column> moduleColumns()
{
    return {{QStringLiteral("module")}, {QStringLiteral("selectorType")}, {QStringLiteral("note")}};
}

QVector<Entry> moduleEntries(const QString &providerList)
{
    const QString path = SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
        + QLatin1Char('/')
        + ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList();
    QVector<Entry> entries;
    const auto modules = SelectorHandlerConvenienceFunctions::getJsonObjectModuleList(providerList);
    for (const QJsonObject &module : modules) {
        QJsonArray array;
        QStringList selectorTypes;
        if (readJsonArrayFromJson(path, module, array)) {
            for (const QJsonValue &value : qAsConst(array)) {
                selectorTypes.append(value.toString());
            }
        }
        entries.append(moduleEntry(
            SelectorHandlerConvenienceFunctions::getModuleNameFromJsonObjectModule(module),
            selectorTypes));
    }
    return entries;
}

QVector<Entry> moduleEntriesOfType(const QString &providerList, const QString &type)
{
    QVector<Entry> entries;
    const auto modules
        = SelectorHandlerConvenienceFunctions::getModuleDataFromRegisteredProviderList(providerList,
                                                                                       type);
    for (const auto &module : modules) {
        entries.append(moduleEntry(module.moduleName, module.selectorTypeList.toList()));
    }
    return entries;
}
