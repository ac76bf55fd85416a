// SPDX-License-Identifier: MIT
// Module names and matching selector types out of a provider list.
#include "SelectorHandlerConvenienceFunctions.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "JsonFunctions.h"
#include "SystemInformationManagerRegistryDefinitions.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonValue>

namespace {

QVector<QString> matchingEntries(const QJsonArray &entries, const QString &selectorTypeName)
{
    QVector<QString> matching;
    const int size = entries.size();
    for (int i = 0; i < size; ++i) {
        const QString entry = entries.at(i).toString();
        const int lastSegment = entry.lastIndexOf(QLatin1Char('/')) + 1;
        if (entry.midRef(lastSegment) == selectorTypeName) {
            matching.append(entry);
        }
    }
    return matching;
}

} // namespace

SelectorHandlerConvenienceFunctions::SelectorHandlerConvenienceFunctions() = default;

SelectorHandlerConvenienceFunctions::~SelectorHandlerConvenienceFunctions() = default;

QString SelectorHandlerConvenienceFunctions::getModuleNameFromJsonObjectModule(
    const QJsonObject &jsonObjectModule)
{
    QJsonValue value;
    if (!readJsonValue(SystemInformationManagerRegistryDefinitions::getKeyModuleName(),
                       jsonObjectModule, value)) {
        qWarning() << "Can't read the moduleName. Selector data:" << jsonObjectModule;
        return QString();
    }
    if (!value.isString()) {
        qWarning() << "No string in moduleName." << value << "Selector data:" << jsonObjectModule;
        return QString();
    }
    return value.toString();
}

QVector<QJsonObject>
SelectorHandlerConvenienceFunctions::getJsonObjectModuleList(const QVariant &registeredProviderList)
{
    const QJsonArray elements = createJsonArrayFromJsonString(registeredProviderList.toString());
    const int size = elements.size();
    QVector<QJsonObject> modules;
    modules.reserve(size);
    for (int i = 0; i < size; ++i) {
        const QJsonValue element = elements.at(i);
        if (element.isObject()) {
            modules.append(element.toObject());
        } else {
            qWarning() << "No object in selector data. Selector data:" << element;
        }
    }
    return modules;
}

QVector<SelectorHandlerConvenienceFunctions::ModuleData>
SelectorHandlerConvenienceFunctions::getModuleDataFromRegisteredProviderList(
    const QVariant &registeredProviderList, const QString &selectorTypeName)
{
    QVector<ModuleData> result;
    const QVector<QJsonObject> modules = getJsonObjectModuleList(registeredProviderList);
    for (const QJsonObject &module : modules) {
        const QString keyPath = SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
            + QLatin1Char('/')
            + ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList();
        QJsonArray entries;
        if (!readJsonArrayFromJson(keyPath, module, entries)) {
            qWarning() << "Error on selector data struct. Url:" << keyPath
                       << "Selector data:" << module;
            continue;
        }
        ModuleData data;
        data.selectorTypeList = matchingEntries(entries, selectorTypeName);
        if (!data.selectorTypeList.isEmpty()) {
            // A name that cannot be read does not cost the module its entries.
            data.moduleName = getModuleNameFromJsonObjectModule(module);
            result.append(data);
        }
    }
    return result;
}
