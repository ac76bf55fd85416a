// SPDX-License-Identifier: MIT
// Keys and constants, on purpose unlike those of any real platform; printing of errors.
#include "CallRecord.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "ErrorContainer.h"
#include "PropertyManagerConst.h"
#include "SystemInformationManagerRegistryDefinitions.h"

namespace {

void called(const char *className, const char *operation)
{
    CallRecord::instance().called(QLatin1String(className), QString(), QLatin1String(operation));
}

} // namespace

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly()
{
    static const QString key = QStringLiteral("is-read-only");
    called("ConfigurationAndProcessDataDefinitions", "getKeyDataPropertyReadOnly");
    return key;
}

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList()
{
    static const QString key = QStringLiteral("types-of-selectors");
    called("ConfigurationAndProcessDataDefinitions", "getKeyDataPropertySelectorTypeList");
    return key;
}

const QString &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
{
    static const QString scheme = QStringLiteral("scripted");
    called("ConfigurationAndProcessDataDefinitions", "getSelectorUrlSchemeProcessData");
    return scheme;
}

const QString &PropertyManagerConst::getProcessDataDescriptionFileExtension()
{
    static const QString extension = QStringLiteral("script");
    called("PropertyManagerConst", "getProcessDataDescriptionFileExtension");
    return extension;
}

const QString &SystemInformationManagerRegistryDefinitions::getKeyModuleName()
{
    static const QString key = QStringLiteral("name-of-module");
    called("SystemInformationManagerRegistryDefinitions", "getKeyModuleName");
    return key;
}

const QString &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
{
    static const QString key = QStringLiteral("more-data");
    called("SystemInformationManagerRegistryDefinitions", "getKeyAdditionalData");
    return key;
}

QDebug operator<<(QDebug debug, const ErrorContainer &error)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "ErrorContainer(" << error.getCode() << ", " << error.getText() << ')';
    return debug;
}
