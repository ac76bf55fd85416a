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
    return Pointer(ModuleHosts::instance().acquire(moduleName, error));
}

bool ModuleHost::reserve(const SourceName &source, QString &error)
{
    bool reserved = false;
    ModuleHosts::instance().runAndWait([&] {
        reserved = find(source) == nullptr;
        if (reserved) {
            instances += Instance{source, false, QStringList()};
        }
    });
    if (!reserved) {
        error = QStringLiteral(
                    "Module \"%1\", object \"%2\": this process already publishes instance \"%3\"")
                    .arg(source.module, source.object, source.instance);
    }
    return reserved;
}

void ModuleHost::serve(const SourceName &source, const QString &description,
                       const QStringList &selectorTypes, AnnouncedChange change,
                       const std::function<void()> &whenServed)
{
    ModuleHosts::instance().runAndWait([&] {
        if (Instance *const instance = find(source)) {
            serveHere(*instance, description, selectorTypes);
            if (whenServed) {
                whenServed();
            }
            announce(*instance, change);
        }
    });
}

void ModuleHost::withdraw(const SourceName &source)
{
    ModuleHosts::instance().runAndWait([&] {
        if (const Instance *const instance = find(source)) {
            instances.removeAt(static_cast<int>(instance - instances.constData()));
            withdrawHere(source);
        }
    });
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

ModuleHost::Instance *ModuleHost::find(const SourceName &source)
{
    const auto found
        = std::find_if(instances.begin(), instances.end(),
                       [&](const Instance &instance) { return instance.source == source; });
    return found == instances.end() ? nullptr : &*found;
}

void ModuleHost::serveHere(Instance &instance, const QString &description,
                           const QStringList &selectorTypes)
{
    const SourceName &source = instance.source;
    auto &object = objects[source.object];
    if (object == nullptr) {
        object = std::make_unique<ProcessDescriptionObject>(moduleName + QLatin1Char('/')
                                                            + source.object);
        endpoint->exportObject(BusNames::pathOfObject(source.object), object.get());
    }
    object->setDescription(source.instance, description);
    const bool registered = instance.served && instance.selectorTypes == selectorTypes;
    instance.served = true;
    instance.selectorTypes = selectorTypes;
    if (!registered) {
        updateRegistration();
    }
}

void ModuleHost::withdrawHere(const SourceName &source)
{
    const auto object = objects.find(source.object);
    if (object != objects.end()) {
        object->second->removeDescription(source.instance);
        if (object->second->instances().isEmpty()) {
            endpoint->withdrawObject(BusNames::pathOfObject(source.object));
            objects.erase(object);
        }
        updateRegistration();
    }
}

void ModuleHost::announce(const Instance &instance, AnnouncedChange change)
{
    endpoint->sendSignal(
        BusNames::pathOfObject(instance.source.object), BusNames::processDescriptionInterface(),
        change == AnnouncedChange::Description ? BusNames::processDescriptionChangedSignal()
                                               : BusNames::propertyChangedSignal(),
        {instance.source.instance});
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
                           .arg(instance.source.object, instance.source.instance, selectorType);
        }
    }
    registration->setSelectorTypes(entries);
}
