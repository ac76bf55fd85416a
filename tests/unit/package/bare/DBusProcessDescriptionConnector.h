// SPDX-License-Identifier: MIT
// Client of the description service.
#ifndef DBUSPROCESSDESCRIPTIONCONNECTOR_H
#define DBUSPROCESSDESCRIPTIONCONNECTOR_H

#include "DBusConnectorBase.h"
#include "DBusReply.h"

#include <QSharedPointer>

class DBusPendingReply;

class DBusProcessDescriptionConnector : public DBusConnectorBase
{
    Q_OBJECT

public:
    static QSharedPointer<DBusProcessDescriptionConnector> createAndConnect(const QString &module,
                                                                            const QString &object);
    ~DBusProcessDescriptionConnector() override;
    DBusReply getProcessDataDescription(const QString &instance, const QString &reserved) const;
    QSharedPointer<DBusPendingReply>
    getProcessDataDescriptionAsynchron(const QString &instance, const QString &reserved) const;

Q_SIGNALS:
    void processDataDescriptionChanged(const QString &instanceName);
    void propertyChanged(const QString &instanceName);

private:
    DBusProcessDescriptionConnector(const QString &module, const QString &object);

    const QString module;
    const QString object;
};

#endif
