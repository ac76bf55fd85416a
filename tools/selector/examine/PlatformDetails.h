// SPDX-License-Identifier: MIT
// What a platform may show of itself beyond what every platform's access offers.
//
// Each platform has one body, in buffers/.
#ifndef PLATFORMDETAILS_H
#define PLATFORMDETAILS_H

#include "ProcessDataAccess.h"

namespace PlatformDetails {

/// Who serves a module.
struct Owner
{
    QString service; ///< as people look for it: the name on the bus
    QString connection; ///< its owner's own name on the bus
    quint32 processId = 0; ///< 0: not known
    quint32 userId = 0; ///< 0 also where it is not known
};

/// @param owner  receives the service's name in any case, the rest on success
/// Threads: any. The service itself is not asked.
ProcessDataAccess::Result fetchOwner(const QString &module, Owner &owner, QString &errorMessage);

struct Services
{
    QStringList modules; ///< that are served, sorted
    bool statusManager = false; ///< whether the system status manager is there
    bool informationManager = false; ///< whether the system information manager is there
};

ProcessDataAccess::Result fetchServices(Services &services, QString &errorMessage);

/// Whether the system has finished starting up, as its status manager says.
ProcessDataAccess::Result fetchReady(bool &ready, QString &errorMessage);

} // namespace PlatformDetails

#endif
