// SPDX-License-Identifier: MIT
// The one connection that all clients of a process share, and what they know of their services.
#ifndef CLIENTBUS_H
#define CLIENTBUS_H

#include "BusLink.h"
#include "FetchQueue.h"
#include "ForkedChild.h"
#include "LossWatch.h"
#include "ServiceTable.h"
#include "SystemWatchers.h"

#include <QDBusMessage>
#include <QMutex>
#include <QMutexLocker>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QWaitCondition>

#include <memory>

/// Lives in a bus thread of its own, so that owners are tracked and the bus is reached again even
/// while a client's thread waits or runs no event loop.
///
/// Threads: public operations may be called in any thread but the bus thread.
class ClientBus : public QObject
{
    Q_OBJECT

public:
    /// The connection to the bus that the environment chooses; waits until it stands, at most for
    /// the platform's time limit.
    ///
    /// @param error  receives one sentence that names the bus and the reason; left alone on success
    /// @returns null when the bus cannot be reached
    static QSharedPointer<ClientBus> instance(QString &error);

    explicit ClientBus(const BusChoice &choice);
    ~ClientBus() override;

    /// Disconnects for good. Called in the bus thread before it ends.
    void shutDown();

    /// From now on the listener hears of its service and of signals from its path, until the table
    /// forgets it.
    void addListener(ServiceListener *listener);

    /// Hands the table to a function, under the lock; does nothing in a forked child.
    template <typename Function> void withTable(Function function)
    {
        if (!isMissing()) {
            const QMutexLocker lock(&mutex);
            function(table);
        }
    }

    /// Whether somebody owns the service's name. Waits for the bus daemon's first answer, at most
    /// for the platform's time limit.
    bool hasOwner(const QString &service);

    /// Sends a call and waits for its answer, at most for the platform's time limit; an error
    /// message at once when the service is known to hang. Never starts a service.
    ///
    /// @param asker  hears when a service that kept the named instance to itself answers again; null
    ///               for nobody
    QDBusMessage call(const QDBusMessage &call, const ServiceListener *asker = nullptr);

    /// Sends a call and hands its answer over when it is this one's turn. Never starts a service.
    void fetch(const FetchQueue::Fetch &fetch);

    /// From now on asks about a source that is read although it is lost, for as long as it is.
    ///
    /// Threads: any; does not wait.
    void watchLost(const QSharedPointer<SourceWatch> &source);

    /// From now on the function hears of the system, in the bus thread, until the watcher is
    /// removed. When changes of the list of providers are heard, it is told that it may differ.
    void addWatcher(const void *watcher, const SystemWatchers::Hear &hear);

    /// When it returns, no call of the watcher's function runs, and none comes.
    void removeWatcher(const void *watcher);

    /// The connection for calls that nobody waits for; hold the copy as long as the call is under
    /// way.
    QDBusConnection connection() const { return link.connection(); }
    const BusChoice &bus() const { return link.bus(); }

    /// Whether the bus thread stayed with the process that this one was forked from: nobody would
    /// answer, and the mutex may be held for good.
    bool isMissing() const { return home.refusesChild("bus connection"); }

private Q_SLOTS:
    void handleOwnerChanged(const QDBusMessage &message);
    void handleSignal(const QDBusMessage &message);
    void handleProperties(const QDBusMessage &message);
    void handleLost();
    void handleRestored();

private:
    struct Probe
    {
        QString service;
        QString path;
        quint64 number;
    };

    class RegistryListener;
    struct RegistryListenerDeleter
    {
        void operator()(RegistryListener *listener) const;
    };

    bool waitUntilConnected(QString &error);
    void connectInBusThread();
    bool setUp(QString &error);
    bool subscribe(QString &error);
    void askForAll();
    void listenToRegistry();
    bool subscribeToRegistry();
    void tellOwner(const QString &service, const QString &owner);
    static QDBusMessage ownerQuestion(const QString &service);
    void askOwner(const QString &service);
    void handleOwner(const QString &service, const QDBusMessage &answer);
    void handleLossDue(const QString &service, const LostSources &sources);
    void handleLostOwner(const QString &service, const LostSources &sources,
                         const QDBusMessage &answer);
    void fetchLost(const QString &service, const QString &owner, const LostSources &sources);
    void handleLostFetch(const QString &owner, const SourceWatch &source,
                         const DescriptionReply &reply);
    void startFetchesSoon();
    void startFetches();
    void sendFetch(const FetchQueue::Fetch &fetch, bool mayTryAgain);
    void endFetch(const FetchQueue::Fetch &fetch, const QDBusMessage &answer, qint64 milliseconds);
    static void reportFetch(const FetchQueue::Fetch &fetch, const QDBusMessage &answer);
    void noteOwed(const QDBusMessage &call, const ServiceListener *asker);
    void noteTimeout(const QDBusMessage &call, const ServiceListener *asker,
                     const QDBusMessage &answer, qint64 milliseconds, int limit);
    void sendProbe(const Probe &probe);
    void handleProbe(const Probe &probe, const QDBusMessage &answer);
    void repeatProbe(const Probe &probe);

    BusLink link;
    const HomeProcess home;
    LossWatch losses;
    SystemWatchers watchers;
    // Made with the first watcher, and used, in the bus thread.
    std::unique_ptr<RegistryListener, RegistryListenerDeleter> registry;
    mutable QMutex mutex; // guards all below; never held while something waits for the bus thread
    QWaitCondition changed;
    ServiceTable table;
    FetchQueue fetches;
    QString lastError; // of the last attempt to connect
    quint64 attempts = 0; // that have ended
    bool attemptUnderWay = false;
    bool daemonSilent = false; // did not tell an owner in time
};

#endif
