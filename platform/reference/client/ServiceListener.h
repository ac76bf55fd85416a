// SPDX-License-Identifier: MIT
// What a connector learns about its service.
#ifndef SERVICELISTENER_H
#define SERVICELISTENER_H

#include <QString>

/// Called in the bus thread, under the lock of ClientBus: an implementer only queues what it has
/// heard.
class ServiceListener
{
public:
    /// Why a service counts as present now.
    enum class Presence {
        Found, ///< it was there when the first connector asked
        Appeared, ///< it took its name; whatever it has to say follows
        FoundAgain, ///< it was there when the bus could be asked again; what it said meanwhile is
        ///< lost
    };

    virtual ~ServiceListener() = default;
    ServiceListener(const ServiceListener &) = delete;
    ServiceListener &operator=(const ServiceListener &) = delete;

    /// @param owner  unique bus name of whoever owns the service now
    virtual void servicePresent(Presence presence, const QString &owner) = 0;

    /// A service that was remembered as hung has answered again.
    virtual void serviceAnswersAgain() = 0;

    /// Whether it has asked the service for what a signal's argument names. Then it is told of the
    /// signal before the others.
    virtual bool hasAskedFor(const QString &argument) const = 0;

    /// The service's present owner sent a signal from the listener's path.
    ///
    /// @param argument  the signal's only argument; null when it has none
    virtual void signalReceived(const QString &member, const QString &argument) = 0;

protected:
    ServiceListener() = default;
};

#endif
