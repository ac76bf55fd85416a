// SPDX-License-Identifier: MIT
// What all D-Bus clients of the platform have in common.
#ifndef DBUSCONNECTORBASE_H
#define DBUSCONNECTORBASE_H

#include "ProcessDataPlatformExport.h"

#include <QObject>
#include <QScopedPointer>

class DBusConnectorBasePrivate;

/// A client of one D-Bus interface. Made by the static factories of the derived classes and owned
/// by whoever holds the shared pointer.
///
/// Threads: lives in the thread that made it, whose event loop delivers its signals. Its operations
///          are called in that thread, or in another one while the first waits.
class PROCESSDATAPLATFORM_EXPORT DBusConnectorBase : public QObject
{
    Q_OBJECT

public:
    ~DBusConnectorBase() override;

    /// Whether the remote interface is reachable: its service has an owner on a connected bus.
    ///
    /// Called by the library before each blocking fetch. The first call may ask the bus daemon
    /// once, with the platform's time limit; later calls answer from what the bus announced.
    bool isDBusInterfaceValid() const;

protected:
    /// @param state  the implementation's, owned by this object
    explicit DBusConnectorBase(DBusConnectorBasePrivate *state);

    const QScopedPointer<DBusConnectorBasePrivate> d; ///< the implementation's state
};

#endif
