// SPDX-License-Identifier: MIT
// Asks a module's service for its objects, their instances and descriptions.
#ifndef INSTANCELISTCLIENT_H
#define INSTANCELISTCLIENT_H

#include "BusQueryResult.h"
#include "ProcessDataPlatformExport.h"

#include <QString>
#include <QStringList>

/// Fetches the names of a module's objects, sorted, from the introspection of its service, and
/// waits for them, at most for the platform's time limit.
///
/// @param moduleName    whose service is asked
/// @param objects       receives the names, unescaped; left alone on failure
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
/// @returns how it ended
/// Threads: any. Runs no event loop.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchObjects(const QString &moduleName,
                                                       QStringList &objects, QString &errorMessage);

/// Fetches the names of an object's instances, sorted; otherwise like fetchObjects.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchInstances(const QString &moduleName,
                                                         const QString &objectName,
                                                         QStringList &instances,
                                                         QString &errorMessage);

/// Fetches an instance's description as the service sends it; otherwise like fetchObjects.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchDescription(const QString &moduleName,
                                                           const QString &objectName,
                                                           const QString &instance,
                                                           QString &description,
                                                           QString &errorMessage);

#endif
