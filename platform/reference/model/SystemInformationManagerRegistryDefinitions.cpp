// SPDX-License-Identifier: MIT
// Keys of the JSON list of registered providers.
#include "SystemInformationManagerRegistryDefinitions.h"

const QString &SystemInformationManagerRegistryDefinitions::getKeyModuleName()
{
    static const QString key = QStringLiteral("moduleName");
    return key;
}

const QString &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
{
    static const QString key = QStringLiteral("additionalData");
    return key;
}
