// SPDX-License-Identifier: MIT
// Watches over the system: services of modules, the list of providers, the bus itself.
#include "BusNames.h"
#include "ClientBus.h"

// Hears of the provider registry. What the table says of its owner comes under the lock of
// ClientBus, so it is told later.
class ClientBus::RegistryListener : public ServiceListener
{
public:
    explicit RegistryListener(ClientBus &bus)
        : ServiceListener(BusNames::informationManagerService(), BusNames::informationManagerPath())
        , bus(bus)
    {
    }

    void hear(const ServiceEvent &event) override
    {
        if (event.kind == ServiceEvent::Kind::Appeared) {
            return; // told where its owner changed
        }
        QMetaObject::invokeMethod(
            &bus,
            [this] {
                bus.watchers.tell({SystemChange::ProvidersChanged, {}});
            },
            Qt::QueuedConnection);
    }

private:
    ClientBus &bus;
};

void ClientBus::RegistryListenerDeleter::operator()(RegistryListener *listener) const
{
    delete listener;
}

void ClientBus::addWatcher(const void *watcher, const SystemWatchers::Hear &hear)
{
    if (isMissing()) {
        return;
    }
    watchers.add(watcher, hear);
    QMetaObject::invokeMethod(
        this, [this] { listenToRegistry(); }, Qt::QueuedConnection);
}

void ClientBus::removeWatcher(const void *watcher)
{
    if (!isMissing()) {
        watchers.remove(watcher);
    }
}

// Only processes that watch pay for the signals of the registry. Its owner is asked for behind the
// subscription: when the answer is there, changes are heard.
void ClientBus::listenToRegistry()
{
    if (registry) {
        bool isServed = false;
        withTable([&](ServiceTable &known) {
            isServed = !known.ownerOf(BusNames::informationManagerService()).isEmpty();
        });
        if (isServed) {
            watchers.tell({SystemChange::ProvidersChanged, {}});
        }
        return;
    }
    registry.reset(new RegistryListener(*this));
    if (link.isConnected()) {
        subscribeToRegistry(); // else when the bus is back
    }
    addListener(registry.get());
}

bool ClientBus::subscribeToRegistry()
{
    return link.subscribe({BusNames::informationManagerPath(),
                           BusNames::informationManagerInterface(),
                           BusNames::providerListChangedSignal()},
                          this, SLOT(handleSignal(QDBusMessage)));
}

void ClientBus::tellOwner(const QString &service, const QString &owner)
{
    if (service == BusNames::informationManagerService()) {
        watchers.tell({SystemChange::ProvidersChanged, {}});
    } else if (const std::optional<QString> module = BusNames::moduleOfService(service)) {
        watchers.tell(
            {owner.isEmpty() ? SystemChange::ServiceLost : SystemChange::ServiceAppeared, *module});
    }
}
