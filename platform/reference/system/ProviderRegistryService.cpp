// SPDX-License-Identifier: MIT
// Plays the provider registry of the system information manager on development machines.
#include "ProviderRegistryService.h"

#include "BusNames.h"
#include "ProviderRegistryObject.h"
#include "ServiceEndpoint.h"
#include "ServingConnection.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(systemLog, "processdata.system")

}

class ProviderRegistryServicePrivate
{
public:
    ProviderRegistryServicePrivate()
        : endpoint(BusChoice::fromEnvironment(), BusNames::informationManagerService(),
                   ServiceEndpoint::documents)
    {
        endpoint.exportObject(BusNames::informationManagerPath(), &object);
    }

    // Every connection of the bus may be a provider's, so the end of every connection is of
    // interest.
    void watchProviders()
    {
        const bool watching = endpoint.connection()->watchOwners(
            QString(), &object, [this](const QString &name, const QString &owner) {
                object.handleOwnerChanged(name, owner);
            });
        if (!watching) {
            qCWarning(systemLog) << "Providers that end without a word will stay in the list";
        }
    }

    ProviderRegistryObject object; // outlives the connection that it is exported on
    ServiceEndpoint endpoint;
};

QSharedPointer<ProviderRegistryService> ProviderRegistryService::create(QString *errorMessage)
{
    QSharedPointer<ProviderRegistryService> service(
        new ProviderRegistryService(new ProviderRegistryServicePrivate));
    QString error;
    if (!service->d->endpoint.start(error)) {
        if (errorMessage != nullptr) {
            *errorMessage = error;
        }
        service.reset();
    }
    return service;
}

ProviderRegistryService::ProviderRegistryService(ProviderRegistryServicePrivate *state)
    : d(state)
{
    QObject::connect(&d->object, &ProviderRegistryObject::listChanged, this, [this] {
        d->endpoint.sendSignal(BusNames::informationManagerPath(),
                               BusNames::informationManagerInterface(),
                               BusNames::providerListChangedSignal());
        Q_EMIT providerListChanged();
    });
    QObject::connect(&d->endpoint, &ServiceEndpoint::becameAvailable, this,
                     [this] { d->watchProviders(); });
    QObject::connect(&d->endpoint, &ServiceEndpoint::becameUnavailable, this, [this] {
        if (d->object.providers.clear() == ProviderTable::Change::Changed) {
            Q_EMIT providerListChanged();
        }
    });
}

ProviderRegistryService::~ProviderRegistryService() = default;

QString ProviderRegistryService::providerList() const
{
    return d->object.providers.toJson();
}
