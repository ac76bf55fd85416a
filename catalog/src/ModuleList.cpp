// SPDX-License-Identifier: MIT
// Reads lists of registered providers with the library's own functions.
#include "ModuleList.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "JsonFunctions.h"
#include "SelectorHandlerConvenienceFunctions.h"
#include "SystemInformationManagerRegistryDefinitions.h"

QVector<Module> modulesOfList(const QString &providerList)
{
    const QString path = SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
        + QLatin1Char('/')
        + ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList();
    QVector<Module> modules;
    const auto providers
        = SelectorHandlerConvenienceFunctions::getJsonObjectModuleList(providerList);
    for (const QJsonObject &provider : providers) {
        Module module;
        QJsonArray types;
        if (readJsonArrayFromJson(path, provider, types)) {
            for (const QJsonValue &type : qAsConst(types)) {
                module.selectorTypes.append(type.toString());
            }
        }
        module.name
            = SelectorHandlerConvenienceFunctions::getModuleNameFromJsonObjectModule(provider);
        modules.append(module);
    }
    return modules;
}

QVector<Module> modulesOfType(const QString &providerList, const QString &type)
{
    QVector<Module> modules;
    const auto providers
        = SelectorHandlerConvenienceFunctions::getModuleDataFromRegisteredProviderList(providerList,
                                                                                       type);
    for (const auto &provider : providers) {
        modules.append({provider.moduleName, provider.selectorTypeList.toList()});
    }
    return modules;
}
