// SPDX-License-Identifier: MIT
// The connections that services of one thread share.
#ifndef SERVINGCONNECTIONS_H
#define SERVINGCONNECTIONS_H

#include "BusSettings.h"

#include <QSharedPointer>
#include <QVector>
#include <QWeakPointer>

class ServingConnection;

/// One connection for each bus; another once the bus daemon gives it no more names. A connection
/// ends with the last service that holds it.
///
/// Threads: that of the services.
class ServingConnections
{
public:
    /// @param full  connections that are not to be used
    QSharedPointer<ServingConnection> find(const BusChoice &choice,
                                           const QVector<QSharedPointer<ServingConnection>> &full);

private:
    QVector<QWeakPointer<ServingConnection>> connections;
};

#endif
