// SPDX-License-Identifier: MIT
// The connections that services of one thread share.
#include "ServingConnections.h"

#include "ServingConnection.h"

QSharedPointer<ServingConnection>
ServingConnections::find(const BusChoice &choice,
                         const QVector<QSharedPointer<ServingConnection>> &full)
{
    connections.removeAll(QWeakPointer<ServingConnection>());
    for (const QWeakPointer<ServingConnection> &each : qAsConst(connections)) {
        QSharedPointer<ServingConnection> connection = each.toStrongRef();
        if (connection != nullptr && connection->bus().key() == choice.key()
            && !full.contains(connection)) {
            return connection;
        }
    }
    QSharedPointer<ServingConnection> fresh(new ServingConnection(choice));
    connections += fresh;
    return fresh;
}
