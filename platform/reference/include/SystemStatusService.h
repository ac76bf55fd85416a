// SPDX-License-Identifier: MIT
// Plays the system status manager on development machines.
#ifndef SYSTEMSTATUSSERVICE_H
#define SYSTEMSTATUSSERVICE_H

#include "ProcessDataPlatformExport.h"

#include <QObject>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QString>

class SystemStatusServicePrivate;

/// Owns the bus name of the system status manager and notifies clients when the system has started up.
///
/// Starts as not ready. Survives a restart of the bus daemon: it comes back with the same state
/// and announces a start-up that is over.
///
/// Threads: create, use and destroy it in one thread that runs an event loop, which answers
///          clients.
class PROCESSDATAPLATFORM_EXPORT SystemStatusService : public QObject
{
    Q_OBJECT

public:
    /// Takes the name and reports that the system is not ready.
    ///
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns the running service; null when the bus is out of reach or another process owns the
    ///          name
    static QSharedPointer<SystemStatusService> create(QString *errorMessage = nullptr);

    /// Gives the name back.
    ~SystemStatusService() override;

    /// Whether the system has started up, as clients see it.
    bool isReady() const;

    /// Sets the property Ready. A change is announced to clients; the change to true also by the
    /// signal StartupReady.
    ///
    /// @param ready  whether the system has started up
    void setReady(bool ready);

private:
    explicit SystemStatusService(SystemStatusServicePrivate *state);
    const QScopedPointer<SystemStatusServicePrivate> d;
};

#endif
