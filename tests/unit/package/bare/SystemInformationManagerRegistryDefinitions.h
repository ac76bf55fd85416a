// SPDX-License-Identifier: MIT
// Keys of the registry.
#ifndef SYSTEMINFORMATIONMANAGERREGISTRYDEFINITIONS_H
#define SYSTEMINFORMATIONMANAGERREGISTRYDEFINITIONS_H

#include <QString>

struct SystemInformationManagerRegistryDefinitions
{
    static const QString &getKeyModuleName();
    static const QString &getKeyAdditionalData();
};

#endif
