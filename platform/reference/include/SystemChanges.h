// SPDX-License-Identifier: MIT
// Tells of services that come and go and of changes in the list of providers.
#ifndef SYSTEMCHANGES_H
#define SYSTEMCHANGES_H

#include "ProcessDataPlatformExport.h"

#include <QScopedPointer>
#include <QString>

#include <functional>
#include <memory>

class SystemChangesPrivate;

/// Something that happened to the system as a whole.
struct SystemChange
{
    enum Kind {
        ServiceAppeared, ///< somebody took the name of a module's service, perhaps from another
        ServiceLost, ///< nobody owns it any more
        ProvidersChanged, ///< the list of providers may differ, or can or cannot be had any more
        BusLost, ///< nothing is heard until BusFound
        BusFound, ///< anything may have happened meanwhile
    };

    Kind kind;
    QString module; ///< of the first two. Services whose name was cut to fit the bus are not told.
};

/// A watch over the system. Costs no call while nothing changes. Ends when it is destroyed; then no
/// call of its function runs, and none comes.
class PROCESSDATAPLATFORM_EXPORT SystemChanges
{
public:
    /// Begins a watch; waits for the connection to the bus, at most for the platform's time limit.
    ///
    /// @param hear          called in a thread of the platform, one call at a time: it only queues,
    ///                      and does not end the watch. Once the watch is set up and there is a
    ///                      list of providers, ProvidersChanged is told.
    /// @param errorMessage  receives one sentence that names what is wrong; left alone on success
    /// @returns null when the bus cannot be reached
    /// Threads: any.
    static std::unique_ptr<SystemChanges>
    watch(const std::function<void(const SystemChange &)> &hear, QString &errorMessage);

    ~SystemChanges();
    SystemChanges(const SystemChanges &) = delete;
    SystemChanges &operator=(const SystemChanges &) = delete;

private:
    explicit SystemChanges(SystemChangesPrivate *state);

    const QScopedPointer<SystemChangesPrivate> d;
};

#endif
