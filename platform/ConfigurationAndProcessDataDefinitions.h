// SPDX-License-Identifier: MIT
// Keys of process-data descriptions and the scheme of selector URLs.
#ifndef CONFIGURATIONANDPROCESSDATADEFINITIONS_H
#define CONFIGURATIONANDPROCESSDATADEFINITIONS_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// Each getter returns a reference to a string that lives for the whole process.
///
/// Threads: any, also at the same time.
class PROCESSDATAPLATFORM_EXPORT ConfigurationAndProcessDataDefinitions
{
public:
    /// Key of the read-only flag among a leaf's properties: "readOnly".
    static const QString &getKeyDataPropertyReadOnly();

    /// Key of the selector type list inside a module's additional data: "selectorTypeList".
    static const QString &getKeyDataPropertySelectorTypeList();

    /// Scheme of process-data selectors: "processdata".
    static const QString &getSelectorUrlSchemeProcessData();
};

#endif
