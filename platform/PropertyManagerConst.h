// SPDX-License-Identifier: MIT
// Constants of the property manager.
#ifndef PROPERTYMANAGERCONST_H
#define PROPERTYMANAGERCONST_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// Each getter returns a reference to a string that lives for the whole process.
///
/// Threads: any, also at the same time.
class PROCESSDATAPLATFORM_EXPORT PropertyManagerConst
{
public:
    /// File extension of process-data descriptions, without a dot: "pdd". The library hands it on
    /// to ProcessDataManager::createProcessDataFromJson.
    static const QString &getProcessDataDescriptionFileExtension();
};

#endif
