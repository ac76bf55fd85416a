// SPDX-License-Identifier: MIT
// Keys and constants, as the script names them; printing of errors.
#include "CallRecord.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "ErrorContainer.h"
#include "PropertyManagerConst.h"
#include "Script.h"
#include "SystemInformationManagerRegistryDefinitions.h"

namespace {

void called(const char *className, const char *operation)
{
    CallRecord::instance().called(QLatin1String(className), QString(), QLatin1String(operation));
}

} // namespace

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly()
{
    called("ConfigurationAndProcessDataDefinitions", "getKeyDataPropertyReadOnly");
    return Script::names().readOnlyProperty;
}

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList()
{
    called("ConfigurationAndProcessDataDefinitions", "getKeyDataPropertySelectorTypeList");
    return Script::names().selectorTypeListKey;
}

const QString &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
{
    called("ConfigurationAndProcessDataDefinitions", "getSelectorUrlSchemeProcessData");
    return Script::names().urlScheme;
}

const QString &PropertyManagerConst::getProcessDataDescriptionFileExtension()
{
    called("PropertyManagerConst", "getProcessDataDescriptionFileExtension");
    return Script::names().descriptionFileExtension;
}

const QString &SystemInformationManagerRegistryDefinitions::getKeyModuleName()
{
    called("SystemInformationManagerRegistryDefinitions", "getKeyModuleName");
    return Script::names().providerModuleKey;
}

const QString &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
{
    called("SystemInformationManagerRegistryDefinitions", "getKeyAdditionalData");
    return Script::names().providerDataKey;
}

QDebug operator<<(QDebug debug, const ErrorContainer &error)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "ErrorContainer(" << error.getCode() << ", " << error.getText() << ')';
    return debug;
}
