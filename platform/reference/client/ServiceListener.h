// SPDX-License-Identifier: MIT
// What a connector learns about its service.
#ifndef SERVICELISTENER_H
#define SERVICELISTENER_H

#include <QString>

#include <utility>

struct ServiceEvent
{
    enum class Kind {
        Found, ///< the service was there when the first connector asked
        Appeared, ///< it took its name; whatever it has to say follows
        FoundAgain, ///< it was there when the bus could be asked again, and was not heard meanwhile
        AnswersAgain, ///< it hung, and owes the listener an answer
        Signal, ///< its owner sent a signal from the listener's path
    };

    Kind kind;
    /// The owner's unique name; the instance that is owed; the signal's only argument, null when it
    /// has none.
    QString argument;
    QString member = {}; ///< of the signal
};

/// Hears of one service, and of signals of the object at one path of it.
class ServiceListener
{
public:
    ServiceListener(QString service, QString path)
        : service(std::move(service))
        , path(std::move(path))
    {
    }
    virtual ~ServiceListener() = default;
    ServiceListener(const ServiceListener &) = delete;
    ServiceListener &operator=(const ServiceListener &) = delete;

    /// Called in the bus thread, under the lock of ClientBus: an implementer only queues it.
    virtual void hear(const ServiceEvent &event) = 0;

    const QString service;
    const QString path;
};

#endif
