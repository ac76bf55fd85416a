// SPDX-License-Identifier: MIT
// Watches over the system on the connection that all clients of the process share.
#include "SystemChanges.h"

#include "ClientBus.h"

class SystemChangesPrivate
{
public:
    QSharedPointer<ClientBus> bus;
};

std::unique_ptr<SystemChanges>
SystemChanges::watch(const std::function<void(const SystemChange &)> &hear, QString &errorMessage)
{
    const QSharedPointer<ClientBus> bus = ClientBus::instance(errorMessage);
    if (bus.isNull()) {
        return nullptr;
    }
    auto *const state = new SystemChangesPrivate{bus};
    bus->addWatcher(state, hear);
    return std::unique_ptr<SystemChanges>(new SystemChanges(state));
}

SystemChanges::SystemChanges(SystemChangesPrivate *state)
    : d(state)
{
}

SystemChanges::~SystemChanges()
{
    d->bus->removeWatcher(d.data());
}
