// SPDX-License-Identifier: MIT
// Plays the provider registry of the system information manager on development machines.
#ifndef PROVIDERREGISTRYSERVICE_H
#define PROVIDERREGISTRYSERVICE_H

#include "ProcessDataPlatformExport.h"

#include <QObject>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QString>

class ProviderRegistryServicePrivate;

/// Owns the bus name of the system information manager and keeps the list of registered providers.
///
/// A provider belongs to the bus connection that registered it: only that one can change or remove
/// it, and it is dropped when the connection ends. After a restart of the bus daemon the list
/// starts empty and fills again, because publishers register anew.
///
/// Threads: create, use and destroy it in one thread that runs an event loop, which answers
///          clients.
class PROCESSDATAPLATFORM_EXPORT ProviderRegistryService : public QObject
{
    Q_OBJECT

public:
    /// Takes the name and serves an empty list.
    ///
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns the running service; null when the bus is out of reach or another process owns the
    ///          name
    static QSharedPointer<ProviderRegistryService> create(QString *errorMessage = nullptr);

    /// Gives the name back; the list is lost.
    ~ProviderRegistryService() override;

    /// The list as clients fetch it: a JSON array of objects with the keys of
    /// SystemInformationManagerRegistryDefinitions, in the order in which the modules registered.
    QString providerList() const;

Q_SIGNALS:
    /// A provider came, changed or went.
    void providerListChanged();

private:
    explicit ProviderRegistryService(ProviderRegistryServicePrivate *state);
    const QScopedPointer<ProviderRegistryServicePrivate> d;
};

#endif
