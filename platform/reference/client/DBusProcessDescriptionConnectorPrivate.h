// SPDX-License-Identifier: MIT
// Insides of the client of the process-description service.
#ifndef DBUSPROCESSDESCRIPTIONCONNECTORPRIVATE_H
#define DBUSPROCESSDESCRIPTIONCONNECTORPRIVATE_H

#include "DBusConnectorBasePrivate.h"
#include "DBusProcessDescriptionConnector.h"
#include "FetchMemory.h"

#include <QDBusMessage>
#include <QStringList>

class DBusProcessDescriptionConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    DBusProcessDescriptionConnectorPrivate(QSharedPointer<ClientBus> bus, const QString &moduleName,
                                           const QString &objectName);

    static const DBusProcessDescriptionConnectorPrivate &
    of(const DBusProcessDescriptionConnector &q);

    void servicePresent(Presence presence, const QString &owner) override;
    bool hasAskedFor(const QString &instanceName) const override;

    const QSharedPointer<FetchMemory> memory;
    DBusProcessDescriptionConnector *q = nullptr;

protected:
    void handlePresence(Presence presence, const QString &owner) override;
    void handleAnswersAgain() override;
    void handleSignal(const QString &member, const QString &argument) override;

private:
    void announceAll();
    void announce(const QStringList &instanceNames);
};

#endif
