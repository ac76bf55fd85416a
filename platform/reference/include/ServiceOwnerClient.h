// SPDX-License-Identifier: MIT
// Asks the bus who is there: services of modules, the system's services, and who runs them.
#ifndef SERVICEOWNERCLIENT_H
#define SERVICEOWNERCLIENT_H

#include "BusQueryResult.h"
#include "ProcessDataPlatformExport.h"

#include <QString>
#include <QStringList>

/// The process behind a service.
struct ServiceOwner
{
    QString service; ///< bus name that the module's service must own
    QString connection; ///< unique name of its owner
    quint32 processId = 0; ///< 0 where the bus cannot tell
    quint32 userId = 0; ///< user of that connection; 0 also where the bus cannot tell
};

/// Fetches the owner of a module's service from the bus, and waits for it, at most for the
/// platform's time limit. The service itself is not asked.
///
/// @param moduleName    whose service is looked for
/// @param owner         receives the service's name in any case, the rest on success
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
/// @returns how it ended
/// Threads: any. Runs no event loop.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchServiceOwner(const QString &moduleName,
                                                            ServiceOwner &owner,
                                                            QString &errorMessage);

/// Who owns a name on the bus.
struct ServicesOnBus
{
    QStringList modules; ///< sorted; without those whose name was too long to be told from the bus
    bool statusManager = false; ///< whether the system status manager is there
    bool informationManager = false; ///< whether the system information manager is there
};

/// Fetches all services; otherwise like fetchServiceOwner.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchServices(ServicesOnBus &services,
                                                        QString &errorMessage);

#endif
