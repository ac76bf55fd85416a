// SPDX-License-Identifier: MIT
// Client of the status manager.
#ifndef SYSTEMSTATUSMANAGERDBUSCONNECTOR_H
#define SYSTEMSTATUSMANAGERDBUSCONNECTOR_H

#include "DBusConnectorBase.h"

#include <QSharedPointer>

class SystemStatusManagerDBusConnector : public DBusConnectorBase
{
    Q_OBJECT

public:
    static QSharedPointer<SystemStatusManagerDBusConnector> createAndConnect();
    ~SystemStatusManagerDBusConnector() override;

Q_SIGNALS:
    void orvalisStartupReady();

private:
    SystemStatusManagerDBusConnector();
};

#endif
