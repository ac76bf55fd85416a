// SPDX-License-Identifier: MIT
// What all connectors share: their service on the bus, and what it said, queued into their thread.
#ifndef DBUSCONNECTORBASEPRIVATE_H
#define DBUSCONNECTORBASEPRIVATE_H

#include "ClientBus.h"
#include "ServiceListener.h"

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVector>

class QTimer;

/// Hears of the service in the bus thread and hands it on in the connector's thread, in the same
/// order.
class DBusConnectorBasePrivate : public ServiceListener
{
public:
    DBusConnectorBasePrivate(QSharedPointer<ClientBus> bus, const QString &service,
                             const QString &path);

    /// The bus that the environment chooses; null, with a warning, when it cannot be reached.
    static QSharedPointer<ClientBus> findBus();

    void start(QObject *owner);
    void stop();

    void hear(const ServiceEvent &event) override;

    const QSharedPointer<ClientBus> bus;

protected:
    // In the connector's thread, one at a time. The connector may be gone when it returns.
    virtual void handle(const ServiceEvent &event) = 0;

private:
    bool isQueuedAlready(const ServiceEvent &signal);
    void deliver();

    QTimer *turn = nullptr; // a child of the connector
    QMutex mutex; // guards what follows
    QVector<ServiceEvent> queue;
    QHash<QString, QString> lastSignals; // of each argument in the queue's last run of signals
};

#endif
