// SPDX-License-Identifier: MIT
// The reference platform's services and who runs them.
#include "PlatformDetails.h"
#include "ReferenceResult.h"
#include "ServiceOwnerClient.h"
#include "SystemReadyClient.h"

namespace PlatformDetails {

ProcessDataAccess::Result fetchOwner(const QString &module, Owner &owner, QString &errorMessage)
{
    ServiceOwner found;
    const auto result = resultOf(fetchServiceOwner(module, found, errorMessage));
    owner = {found.service, found.connection, found.processId, found.userId};
    return result;
}

ProcessDataAccess::Result fetchServices(Services &services, QString &errorMessage)
{
    ServicesOnBus found;
    const auto result = resultOf(::fetchServices(found, errorMessage));
    services = {found.modules, found.statusManager, found.informationManager};
    return result;
}

ProcessDataAccess::Result fetchReady(bool &ready, QString &errorMessage)
{
    return resultOf(fetchSystemReady(ready, errorMessage));
}

} // namespace PlatformDetails
