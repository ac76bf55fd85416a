// SPDX-License-Identifier: MIT
// Keys of the JSON list of registered providers.
#ifndef SYSTEMINFORMATIONMANAGERREGISTRYDEFINITIONS_H
#define SYSTEMINFORMATIONMANAGERREGISTRYDEFINITIONS_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// Each getter returns a reference to a string that lives for the whole process.
///
/// Threads: any, also at the same time.
class PROCESSDATAPLATFORM_EXPORT SystemInformationManagerRegistryDefinitions
{
public:
    /// Key of a module's name in a module object of the list: "moduleName".
    static const QString &getKeyModuleName();

    /// Key of a module's additional-data object: "additionalData".
    static const QString &getKeyAdditionalData();
};

#endif
