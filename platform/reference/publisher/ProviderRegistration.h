// SPDX-License-Identifier: MIT
// Keeps a module registered at the system information manager.
#ifndef PROVIDERREGISTRATION_H
#define PROVIDERREGISTRATION_H

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

class ServiceEndpoint;

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

private Q_SLOTS:
    void handleRegistryOwner(const QDBusMessage &message);

private:
    void sendRegistration();
    QString additionalData() const;

    const QString moduleName;
    QStringList selectorTypes;
    bool hasData = false; // else there is nothing to register yet
    QDBusConnection connection;
    QTimer timer;
};

#endif
