// SPDX-License-Identifier: MIT
// D-Bus client of the system status manager.
#ifndef SYSTEMSTATUSMANAGERDBUSCONNECTOR_H
#define SYSTEMSTATUSMANAGERDBUSCONNECTOR_H

#include "DBusConnectorBase.h"
#include "ProcessDataPlatformExport.h"

#include <QSharedPointer>

class SystemStatusManagerDBusConnectorPrivate;

/// Tells when the system has finished starting up.
class PROCESSDATAPLATFORM_EXPORT SystemStatusManagerDBusConnector : public DBusConnectorBase
{
    Q_OBJECT

public:
    /// Called by the library once for each handler that is made without a list of URLs. Must not
    /// wait for the service.
    ///
    /// @returns the connector; null when no connection to the bus could be made
    static QSharedPointer<SystemStatusManagerDBusConnector> createAndConnect();

    ~SystemStatusManagerDBusConnector() override;

Q_SIGNALS:
    /// The system has finished starting up. A connector that finds the system ready already emits
    /// this once all the same, from the event loop, so that late clients refresh too.
    void orvalisStartupReady();

private:
    friend class SystemStatusManagerDBusConnectorPrivate;
    explicit SystemStatusManagerDBusConnector(SystemStatusManagerDBusConnectorPrivate *state);
};

#endif
