// SPDX-License-Identifier: MIT
// Plays the system status manager on development machines.
#include "SystemStatusService.h"

#include "BusNames.h"
#include "ServiceEndpoint.h"
#include "SystemStatusObject.h"

class SystemStatusServicePrivate
{
public:
    SystemStatusServicePrivate()
        : endpoint(BusChoice::fromEnvironment(), BusNames::statusManagerService(),
                   ServiceEndpoint::namesOnly)
    {
        endpoint.exportObject(BusNames::statusManagerPath(), &object);
    }

    SystemStatusObject object; // outlives the connection that it is exported on
    ServiceEndpoint endpoint;
};

QSharedPointer<SystemStatusService> SystemStatusService::create(QString *errorMessage)
{
    QSharedPointer<SystemStatusService> service(
        new SystemStatusService(new SystemStatusServicePrivate));
    QString error;
    if (!service->d->endpoint.start(error)) {
        if (errorMessage != nullptr) {
            *errorMessage = error;
        }
        service.reset();
    }
    return service;
}

SystemStatusService::SystemStatusService(SystemStatusServicePrivate *state)
    : d(state)
{
}

SystemStatusService::~SystemStatusService() = default;

bool SystemStatusService::isReady() const
{
    return d->object.ready;
}

void SystemStatusService::setReady(bool ready)
{
    if (d->object.ready == ready) {
        return;
    }
    d->object.ready = ready;
    d->endpoint.sendSignal(BusNames::statusManagerPath(), BusNames::propertiesInterface(),
                           BusNames::propertiesChangedSignal(),
                           {BusNames::statusManagerInterface(),
                            QVariantMap{{BusNames::readyProperty(), ready}}, QStringList()});
    if (ready) {
        d->endpoint.sendSignal(BusNames::statusManagerPath(), BusNames::statusManagerInterface(),
                               BusNames::startupReadySignal());
    }
}
