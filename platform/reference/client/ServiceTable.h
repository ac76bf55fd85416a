// SPDX-License-Identifier: MIT
// Who owns which service, who listens to it for what, and what services that hang owe.
#ifndef SERVICETABLE_H
#define SERVICETABLE_H

#include "PreparedDescription.h"
#include "ServiceListener.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/// A signal as it came in.
struct ServiceSignal
{
    QString sender; ///< unique bus name
    QString path;
    QString member;
    QString argument; ///< its only one; null when it has none
};

/// The bookkeeping of ClientBus: knows no bus and no threads; its user holds one lock around every
/// call.
///
/// Services stay in the table after their last listener, so that a client that replaces its list
/// neither asks again nor forgets that a service hangs.
class ServiceTable
{
public:
    /// Tells the listener at once when the service is known to be present.
    ///
    /// @returns whether the service is new, so that its owner must be asked for
    bool addListener(ServiceListener *listener);
    /// @returns what it expected of its instances; see expect()
    QVector<PreparedDescriptionPointer> removeListener(const ServiceListener *listener);

    /// Remembers that a listener, which was added, asks for an instance: signals that name it reach
    /// it first.
    ///
    /// @returns what the fetch will very likely bring, as expect() left it; null when nothing did
    PreparedDescriptionPointer noteAsked(const ServiceListener *listener, const QString &instance);
    /// @returns what was expected before. Freeing it may take long: let go of it without the lock
    PreparedDescriptionPointer expect(const ServiceListener *listener, const QString &instance,
                                      const PreparedDescriptionPointer &description);
    QStringList askedBy(const ServiceListener *listener);

    /// Remembers that the listener's service kept an instance to itself: the listener hears when it
    /// answers again.
    ///
    /// @param listener  may be gone; then nobody is owed
    void noteOwed(const QString &path, const ServiceListener *listener, const QString &instance);

    QStringList services() const { return entries.keys(); }

    /// Whether it is known if the service has an owner.
    bool isKnown(const QString &service) const;
    QString ownerOf(const QString &service) const { return entries.value(service).owner; }

    /// Remembers that somebody took the service for absent before its owner was known.
    void setGivenUp(const QString &service);

    /// The daemon announced an owner; an empty one when the service is gone.
    void ownerChanged(const QString &service, const QString &owner);

    /// The daemon answered the question for the owner. Ignored when an announcement came first:
    /// that is newer.
    void ownerAnswered(const QString &service, const QString &owner);

    /// The bus is gone: nobody owns anything, and nothing hangs.
    void busLost();

    /// The bus is back: all owners must be asked for again.
    void busRestored();

    /// While the owner of a listener's service is not known yet, the signal is kept until it is.
    void signalReceived(const ServiceSignal &signal);

    /// Remembers that the service did not answer.
    ///
    /// @returns the number of the probe that must be sent; 0 when one is under way
    quint64 setHung(const QString &service);
    bool isHung(const QString &service) const { return entries.value(service).probe != 0; }

    bool isUnderWay(const QString &service, quint64 probe) const;

    /// A probe ended. Ignored when its service was forgotten or replaced meanwhile.
    ///
    /// @param answered  whether the service itself answered it
    void probeEnded(const QString &service, quint64 probe, bool answered);

private:
    enum class Awaits {
        FirstAnswer, // the daemon's, to the question for the owner: nothing was missed
        LateAnswer, // the same, after the bus was lost or somebody was told "absent"
        Bus, // that it comes back; nobody owns anything
        Changes, // of the owner, which is known
    };

    struct Entry
    {
        Awaits awaits = Awaits::FirstAnswer;
        QString owner;
        QVector<ServiceSignal> held; // came in before the owner was known
        quint64 probe = 0; // under way to a service that hangs; 0 when it does not
    };

    struct Asked
    {
        PreparedDescriptionPointer expected;
        bool owed = false; // by the present owner, which hangs
    };

    struct Listening
    {
        ServiceListener *listener;
        QMap<QString, Asked> asked; // by instance
    };

    Listening *find(const QString &path, const ServiceListener *listener);
    template <typename Function> void forEachListening(const QString &service, Function function);
    void becomeKnown(const QString &service, Entry &entry, const QString &owner,
                     ServiceEvent::Kind kind);
    void deliver(const QString &service, const ServiceSignal &signal) const;

    QHash<QString, Entry> entries;
    QHash<QString, QVector<Listening>> listeners; // by path
    quint64 lastProbe = 0;
};

#endif
