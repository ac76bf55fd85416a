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
    DBusConnectorBasePrivate(QSharedPointer<ClientBus> bus, QString service, QString path);
    ~DBusConnectorBasePrivate() override;

    /// The bus that the environment chooses; null, with a warning, when it cannot be reached.
    static QSharedPointer<ClientBus> findBus();

    void start(QObject *owner);
    void stop();

    void servicePresent(Presence presence, const QString &owner) override;
    void serviceAnswersAgain() override;
    bool hasAskedFor(const QString &argument) const override;
    void signalReceived(const QString &member, const QString &argument) override;

    const QSharedPointer<ClientBus> bus;
    const QString service;
    const QString path;

protected:
    // In the connector's thread, one at a time. The connector may be gone when they return.
    virtual void handlePresence(Presence presence, const QString &owner) = 0;
    virtual void handleAnswersAgain() = 0;
    virtual void handleSignal(const QString &member, const QString &argument) = 0;

private:
    struct Event
    {
        enum class Kind { Present, AnswersAgain, Signal };

        Kind kind = Kind::Present;
        Presence presence = Presence::Found;
        QString member;
        QString argument; // or the service's owner
    };

    bool isQueuedAlready(const Event &signal);
    void enqueue(const Event &event);
    void deliver();
    void handle(const Event &event);

    QTimer *turn = nullptr; // a child of the connector
    QMutex mutex; // guards what follows
    QVector<Event> queue;
    QHash<QString, QString> lastSignals; // of each argument in the queue's last run of signals
};

#endif
