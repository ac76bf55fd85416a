// SPDX-License-Identifier: MIT
// The serving side of the bus: a connection of its own, a name, and the objects behind it.
#ifndef SERVICEENDPOINT_H
#define SERVICEENDPOINT_H

#include "BusLink.h"

#include <QDBusMessage>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

class QDBusVirtualObject;

/// Owns one bus name. Takes it again, with all objects, after the bus daemon restarted.
///
/// Never shares the connection of the process's clients: QtDBus would answer a client's call to a
/// service of its own connection within the calling thread, past the thread that the service
/// belongs to.
///
/// Threads: belongs to one thread with an event loop, in which its objects answer.
class ServiceEndpoint : public QObject
{
    Q_OBJECT

public:
    ServiceEndpoint(const BusChoice &choice, QString serviceName, QObject *parent = nullptr);
    ~ServiceEndpoint() override;

    /// Makes an object answer at a path; the object stays the caller's.
    void exportObject(const QString &path, QDBusVirtualObject *object);
    void withdrawObject(const QString &path);

    /// BusLink::subscribe() on the connection as it is now.
    bool subscribe(const BusSignal &signal, QObject *receiver, const char *slot)
    {
        return link.subscribe(signal, receiver, slot);
    }

    /// Connects, exports the objects and takes the name; waits for the bus daemon's answers.
    ///
    /// @param error  receives one sentence that names the bus, the name and the reason. Nothing is
    /// left
    ///               behind then.
    bool start(QString &error);

    /// Gives the name back, after everything that was sent before has reached the bus daemon.
    void stop();

    bool isAvailable() const { return available; }
    QDBusConnection connection() const { return link.connection(); }
    const QString &name() const { return serviceName; }

    /// Sends a signal; dropped while the bus is away.
    void sendSignal(const QString &path, const QString &interface, const QString &member,
                    const QVariantList &arguments = {});

Q_SIGNALS:
    /// The name is owned: for the first time, or again after the bus restarted.
    void becameAvailable();
    void becameUnavailable();

private:
    bool takeName(QString &error);
    void handleLost();
    void handleRestored();

    BusLink link;
    const QString serviceName;
    QHash<QString, QDBusVirtualObject *> objects;
    QTimer nameTimer;
    bool available = false;
    bool warned = false; // that the name could not be taken again
};

#endif
