// SPDX-License-Identifier: MIT
// Who owns which service, who listens to it, and which services hang.
#ifndef SERVICETABLE_H
#define SERVICETABLE_H

#include "ServiceListener.h"

#include <QHash>
#include <QMultiHash>
#include <QString>
#include <QVector>

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
    bool addListener(const QString &service, const QString &path, ServiceListener *listener);
    void removeListener(const QString &path, ServiceListener *listener);

    QStringList services() const { return entries.keys(); }

    /// Whether it is known if the service has an owner.
    bool isKnown(const QString &service) const;
    bool hasOwner(const QString &service) const;
    QString ownerOf(const QString &service) const;

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

    /// A signal came in. While the owner of a listener's service is not known yet, it is kept until
    /// it is.
    void signalReceived(const QString &sender, const QString &path, const QString &member,
                        const QString &argument);

    /// Remembers that the service did not answer.
    ///
    /// @returns the number of the probe that must be sent; 0 when one is under way
    quint64 setHung(const QString &service);
    bool isHung(const QString &service) const;

    bool isUnderWay(const QString &service, quint64 probe) const;

    /// A probe ended. Ignored when its service was forgotten or replaced meanwhile.
    ///
    /// @param answered  whether the service itself answered it
    void probeEnded(const QString &service, quint64 probe, bool answered);

private:
    struct Signal
    {
        QString sender;
        QString path;
        QString member;
        QString argument;
    };

    struct Entry
    {
        bool known = false; // else the daemon was asked and has not answered
        bool givenUp = false; // somebody was told "absent" before it was known
        bool askedAgain = false; // the bus was lost since the first question
        QString owner;
        QVector<Signal> held; // came in before the owner was known
        quint64 probe = 0; // under way to a service that hangs; 0 when it does not
    };

    struct Listening
    {
        QString service;
        ServiceListener *listener;
    };

    void becomeKnown(const QString &service, Entry &entry, const QString &owner,
                     ServiceListener::Presence presence);
    void deliver(const QString &service, const Signal &signal);
    template <typename Function> void forEachListener(const QString &service, Function function);

    QHash<QString, Entry> entries;
    QMultiHash<QString, Listening> listenersByPath;
    quint64 lastProbe = 0;
};

#endif
