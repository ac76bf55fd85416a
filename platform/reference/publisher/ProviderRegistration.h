// SPDX-License-Identifier: MIT
// Keeps a module registered at the system information manager.
#ifndef PROVIDERREGISTRATION_H
#define PROVIDERREGISTRATION_H

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

class ServiceEndpoint;
class ServingConnection;

/// Registers when the registry is there, whenever it comes, and again when the data changes. Waits
/// for nothing: a system without a registry publishes all the same.
///
/// Threads: belongs to one thread with an event loop.
class ProviderRegistration : public QObject
{
    Q_OBJECT

public:
    explicit ProviderRegistration(QString moduleName, QObject *parent = nullptr);

    /// The endpoint has a connection, which owns the module's name.
    void setEndpoint(ServiceEndpoint &endpoint);

    /// The connection is gone.
    void clearConnection();

    /// What clients find in the registry: entries object/instance/selectorType. Changes in one turn
    /// of the event loop are registered together.
    void setSelectorTypes(const QStringList &entries);

    /// Takes the registration back.
    void unregister();

private:
    void sendRegistration();
    QString additionalData() const;

    const QString moduleName;
    QStringList selectorTypes;
    bool hasData = false; // else there is nothing to register yet
    QSharedPointer<ServingConnection> connection; // null while the bus is away
    QTimer timer;
};

#endif
