// SPDX-License-Identifier: MIT
// Builds selector URLs from names.
#ifndef SELECTORURLBUILDER_H
#define SELECTORURLBUILDER_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// The selector URL of one leaf, percent-encoded where needed.
///
/// @param path  names from the top joined by "/"
/// Threads: any.
PROCESSDATAPLATFORM_EXPORT QString selectorUrl(const QString &moduleName, const QString &objectName,
                                               const QString &instanceName, const QString &path);

#endif
