// SPDX-License-Identifier: MIT
// The service of one module, shared by all publishers of the process that publish for it.
#ifndef MODULEHOST_H
#define MODULEHOST_H

#include "BusSettings.h"
#include "ServiceEndpoint.h"
#include "SourceName.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <functional>
#include <map>
#include <memory>

class ProcessDescriptionObject;
class ProviderRegistration;

/// What an announcement says.
enum class AnnouncedChange { Description, Properties };

/// Lives in a thread of its own, which answers clients whatever the publishers' threads do. The
/// modules of a process share a connection.
///
/// Threads: the operations may be called in any thread but the host's; each returns when it is done
/// there.
class ModuleHost : public QObject
{
    Q_OBJECT

public:
    struct Releaser
    {
        void operator()(ModuleHost *host) const;
    };
    using Pointer = std::unique_ptr<ModuleHost, Releaser>;

    /// The running host of a module. The first caller makes it, the last to let go ends it: then
    /// the registration is taken back and the name is free before this returns.
    ///
    /// @param error  receives one sentence on failure
    static Pointer acquire(const QString &moduleName, QString &error);

    /// Reserves an instance before its buffer is made.
    ///
    /// @returns false when this process publishes it already
    bool reserve(const SourceName &source, QString &error);

    /// Serves a description from now on, and announces it.
    ///
    /// @param selectorTypes  of its leaves, distinct, in document order
    /// @param whenServed     called in the host's thread once fetches give the description, before
    ///                       it is announced; may be empty
    void serve(const SourceName &source, const QString &description,
               const QStringList &selectorTypes, AnnouncedChange change,
               const std::function<void()> &whenServed);

    /// Forgets an instance.
    void withdraw(const SourceName &source);

Q_SIGNALS:
    /// The bus went away, or came back and all is announced. Emitted in the host's thread.
    void connectedChanged(bool connected);

private:
    friend class ModuleHosts;
    struct Instance
    {
        SourceName source;
        bool served = false; // else only reserved
        QStringList selectorTypes;
    };

    ModuleHost(const BusChoice &choice, const QString &moduleName, ServingConnections &connections);
    ~ModuleHost() override;

    // In the host's thread.
    bool start(QString &error);
    void stop();
    void serveHere(Instance &instance, const QString &description,
                   const QStringList &selectorTypes);
    void withdrawHere(const SourceName &source);
    Instance *find(const SourceName &source);
    void announce(const Instance &instance, AnnouncedChange change);
    void handleAvailable();
    void updateRegistration();

    const QString moduleName;
    ServiceEndpoint *endpoint; // children, so that they follow into the host's thread
    ProviderRegistration *registration;
    QVector<Instance> instances; // in the order in which they came
    std::map<QString, std::unique_ptr<ProcessDescriptionObject>> objects;
};

#endif
