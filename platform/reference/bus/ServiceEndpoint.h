// SPDX-License-Identifier: MIT
// The serving side of the bus: a name, and the objects behind it.
#ifndef SERVICEENDPOINT_H
#define SERVICEENDPOINT_H

#include "BusSettings.h"
#include "ServingConnection.h"

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <QVector>
#include <QWeakPointer>

/// The connections that services of one thread share: one for each bus, another once the bus daemon
/// gives it no more names. A connection ends with the last service that holds it.
using ServingConnections = QVector<QWeakPointer<ServingConnection>>;

/// Owns one bus name. Takes it again, with all objects, after the bus daemon restarted.
///
/// Threads: belongs to one thread with an event loop, in which its objects answer.
class ServiceEndpoint : public QObject
{
    Q_OBJECT

public:
    /// What calls hold at most whose arguments are names.
    static constexpr qint64 namesOnly = 16 << 10;
    /// What calls hold at most that carry a document.
    static constexpr qint64 documents = 4 << 20;

    /// @param largestCall  bytes of arguments that its interfaces need at most; larger calls get an
    /// error
    /// @param shared       which it uses, in their thread; null for a connection of its own
    ServiceEndpoint(const BusChoice &choice, QString serviceName, qint64 largestCall,
                    ServingConnections *shared = nullptr, QObject *parent = nullptr);
    ~ServiceEndpoint() override;

    /// Makes an object answer at a path; the object stays the caller's.
    void exportObject(const QString &path, ServedObject *object)
    {
        served.objects.insert(path, object);
    }
    void withdrawObject(const QString &path) { served.objects.remove(path); }

    /// Connects, exports the objects and takes the name; waits for the bus daemon's answers.
    ///
    /// @param error  receives one sentence that names the bus, the name and the reason. Nothing is
    /// left
    ///               behind then.
    bool start(QString &error);

    /// Gives the name back, after everything that was sent before has reached the bus daemon.
    void stop();

    bool isAvailable() const { return available; }
    const QString &name() const { return serviceName; }

    /// For calls of the service itself; null before start() and after stop().
    const QSharedPointer<ServingConnection> &connection() const { return serving; }

    /// Sends a signal; dropped while the bus is away.
    void sendSignal(const QString &path, const QString &interface, const QString &member,
                    const QVariantList &arguments = {});

Q_SIGNALS:
    /// The name is owned: for the first time, or again after the bus restarted.
    void becameAvailable();
    void becameUnavailable();

private:
    QVector<QSharedPointer<ServingConnection>> candidates() const;
    bool connectAndTakeName(QString &error);
    QString notOwned(const QString &reason) const;
    void handleLost();
    void handleRestored();

    const BusChoice choice;
    const QString serviceName;
    ServedService served;
    ServingConnections *const shared;
    QSharedPointer<ServingConnection> serving;
    QTimer nameTimer;
    bool available = false;
    bool warned = false; // that the name could not be taken again
};

#endif
