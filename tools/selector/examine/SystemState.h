// SPDX-License-Identifier: MIT
// What the bus, the registry, the services and shared memory say of the system at one time.
#ifndef SYSTEMSTATE_H
#define SYSTEMSTATE_H

#include "Examination.h"

struct ModuleState
{
    QString name;
    bool onBus = false; ///< somebody owns its service's name
    bool registered = false;
    QStringList selectorTypes; ///< as registered: OBJECT/INSTANCE/TYPE
    PlatformDetails::Owner owner;
    Answer answer; ///< the first question that the service did not answer well
    bool complete = false; ///< whether all its sources are known
};

struct SystemState
{
    Answer bus;
    PlatformDetails::Services services;
    Answer registry; ///< meaningful where hasRegistry()
    QString providerList;
    int unreadableProviders = 0; ///< entries of the list without a name
    Answer status; ///< meaningful while the status manager is on the bus
    bool ready = false;
    QVector<ModuleState> modules; ///< sorted by name: on the bus, registered, or both
    QVector<Examination> sources;
    std::shared_ptr<PlatformDetails::BufferList> buffers;

    /// Whether somebody can be asked for the registered modules.
    bool hasRegistry() const { return services.informationManager || !services.managersShown; }
};

/// Asks everybody once; a service that lets the time limit pass is not asked again.
///
/// @param only  modules to look at; empty: all
/// Threads: any; blocks for D-Bus calls. Runs no event loop.
SystemState examineSystem(const QStringList &only);

#endif
