// SPDX-License-Identifier: MIT
// Insides of the client of the process-description service.
#ifndef DBUSPROCESSDESCRIPTIONCONNECTORPRIVATE_H
#define DBUSPROCESSDESCRIPTIONCONNECTORPRIVATE_H

#include "DBusConnectorBasePrivate.h"
#include "DBusProcessDescriptionConnector.h"

#include <QStringList>

class DBusProcessDescriptionConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    DBusProcessDescriptionConnectorPrivate(QSharedPointer<ClientBus> bus, const QString &moduleName,
                                           const QString &objectName);

    static const DBusProcessDescriptionConnectorPrivate &
    of(const DBusProcessDescriptionConnector &q);

    DBusProcessDescriptionConnector *q = nullptr;

protected:
    void handle(const ServiceEvent &event) override;

private:
    void announceAll();
    void announce(const QStringList &instanceNames);
};

#endif
