// SPDX-License-Identifier: MIT
// The service of one module, shared by all publishers of the process that publish for it.
#include "ModuleHost.h"

#include "BusNames.h"
#include "ModuleHosts.h"
#include "ProcessDescriptionObject.h"
#include "ProviderRegistration.h"
#include "ServiceEndpoint.h"

#include <algorithm>
#include <utility>

void ModuleHost::Releaser::operator()(ModuleHost *host) const
{
    ModuleHosts::instance().release(host);
}

ModuleHost::Pointer ModuleHost::acquire(const QString &moduleName, QString &error)
{
    return Pointer(ModuleHosts::acquire(moduleName, error));
}

bool ModuleHost::reserve(const QString &objectName, const QString &instanceName, QString &error)
{
    bool reserved = false;
    ModuleHosts::instance().runAndWait([&] { reserved = reserveHere(objectName, instanceName); });
    if (!reserved) {
        error = QStringLiteral(
                    "Module \"%1\", object \"%2\": this process already publishes instance \"%3\"")
                    .arg(moduleName, objectName, instanceName);
    }
    return reserved;
}

void ModuleHost::serve(const QString &objectName, const QString &instanceName,
                       const QString &description, const QStringList &selectorTypes,
                       AnnouncedChange change, const std::function<void()> &whenServed)
{
    ModuleHosts::instance().runAndWait([&] {
        serveHere(objectName, instanceName, description, selectorTypes, change, whenServed);
    });
}

void ModuleHost::withdraw(const QString &objectName, const QString &instanceName)
{
    ModuleHosts::instance().runAndWait([&] { withdrawHere(objectName, instanceName); });
}

ModuleHost::ModuleHost(const BusChoice &choice, const QString &moduleName,
                       ServingConnections &connections)
    : moduleName(moduleName)
    , endpoint(new ServiceEndpoint(choice, BusNames::serviceOfModule(moduleName),
                                   ServiceEndpoint::namesOnly, &connections, this))
    , registration(new ProviderRegistration(moduleName, this))
{
    QObject::connect(endpoint, &ServiceEndpoint::becameAvailable, this,
                     &ModuleHost::handleAvailable);
    QObject::connect(endpoint, &ServiceEndpoint::becameUnavailable, this, [this] {
        registration->clearConnection();
        Q_EMIT connectedChanged(false);
    });
}

ModuleHost::~ModuleHost() = default;

bool ModuleHost::start(QString &error)
{
    return endpoint->start(error);
}

void ModuleHost::stop()
{
    registration->unregister();
    endpoint->stop();
    registration->clearConnection();
}

ModuleHost::Instance *ModuleHost::find(const QString &objectName, const QString &instanceName)
{
    const auto found
        = std::find_if(instances.begin(), instances.end(), [&](const Instance &instance) {
              return instance.objectName == objectName && instance.instanceName == instanceName;
          });
    return found == instances.end() ? nullptr : &*found;
}

bool ModuleHost::reserveHere(const QString &objectName, const QString &instanceName)
{
    if (find(objectName, instanceName) != nullptr) {
        return false;
    }
    instances += Instance{objectName, instanceName, false, QStringList()};
    return true;
}

void ModuleHost::serveHere(const QString &objectName, const QString &instanceName,
                           const QString &description, const QStringList &selectorTypes,
                           AnnouncedChange change, const std::function<void()> &whenServed)
{
    Instance *const instance = find(objectName, instanceName);
    if (instance == nullptr) {
        return;
    }
    auto &object = objects[objectName];
    if (object == nullptr) {
        object = std::make_unique<ProcessDescriptionObject>(moduleName + QLatin1Char('/')
                                                            + objectName);
        endpoint->exportObject(BusNames::pathOfObject(objectName), object.get());
    }
    object->setDescription(instanceName, description);
    const bool registered = instance->served && instance->selectorTypes == selectorTypes;
    instance->served = true;
    instance->selectorTypes = selectorTypes;
    if (!registered) {
        updateRegistration();
    }
    if (whenServed) {
        whenServed();
    }
    announce(*instance, change);
}

void ModuleHost::withdrawHere(const QString &objectName, const QString &instanceName)
{
    const Instance *const instance = find(objectName, instanceName);
    if (instance == nullptr) {
        return;
    }
    instances.removeAt(static_cast<int>(instance - instances.constData()));
    const auto object = objects.find(objectName);
    if (object != objects.end()) {
        object->second->removeDescription(instanceName);
        if (object->second->instances().isEmpty()) {
            endpoint->withdrawObject(BusNames::pathOfObject(objectName));
            objects.erase(object);
        }
        updateRegistration();
    }
}

void ModuleHost::announce(const Instance &instance, AnnouncedChange change)
{
    endpoint->sendSignal(
        BusNames::pathOfObject(instance.objectName), BusNames::processDescriptionInterface(),
        change == AnnouncedChange::Description ? BusNames::processDescriptionChangedSignal()
                                               : BusNames::propertyChangedSignal(),
        {instance.instanceName});
}

void ModuleHost::handleAvailable()
{
    registration->setEndpoint(*endpoint);
    for (const Instance &instance : std::as_const(instances)) {
        if (instance.served) {
            announce(instance, AnnouncedChange::Description);
        }
    }
    Q_EMIT connectedChanged(true);
}

void ModuleHost::updateRegistration()
{
    QStringList entries;
    for (const Instance &instance : std::as_const(instances)) {
        for (const QString &selectorType : instance.selectorTypes) {
            entries += QStringLiteral("%1/%2/%3")
                           .arg(instance.objectName, instance.instanceName, selectorType);
        }
    }
    registration->setSelectorTypes(entries);
}
