// SPDX-License-Identifier: MIT
// One private connection to the bus that comes back after the bus daemon restarted.
#ifndef BUSLINK_H
#define BUSLINK_H

#include "BusSettings.h"

#include <QDBusConnection>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVector>

/// A signal as a receiver asks for it.
struct BusSignal
{
    QString path; ///< empty for any
    QString interface;
    QString member;
};

/// Threads: belongs to one thread with an event loop; connection() and isConnected() may be called
/// in any.
class BusLink : public QObject
{
    Q_OBJECT

public:
    explicit BusLink(const BusChoice &choice, QObject *parent = nullptr);
    ~BusLink() override;

    /// Connects if that was not done yet; waits for the bus daemon's greeting.
    ///
    /// @param error  receives the reason on failure. A link that never stood tries again only when
    ///               asked; one that was lost goes on trying by itself.
    bool open(QString &error);

    /// Disconnects for good. Runs in the link's thread.
    void close();

    /// The connection as it is now. Hold the copy as long as a call is under way on it.
    QDBusConnection connection() const;
    bool isConnected() const;
    const BusChoice &bus() const { return choice; }

    /// Holds until the connection is lost or closed, and runs in the link's thread. Nothing else may
    /// give the connection an object to call: all are taken back before it is closed. QtDBus closes
    /// it in a thread of its own, after the call that asked for it has returned, and reaches then
    /// for every object that the connection still knows; by that time its owner may have destroyed
    /// it.
    ///
    /// @param slot  as SLOT() names it; takes one QDBusMessage
    /// @return false if the connection refused
    bool subscribe(const BusSignal &signal, QObject *receiver, const char *slot);

Q_SIGNALS:
    /// The bus daemon is gone. All that was set up on the connection is lost.
    void lost();

    /// A new connection stands after the old one was lost. Not for one that open() made.
    void restored();

private Q_SLOTS:
    void handleDisconnected();

private:
    struct Subscription
    {
        BusSignal signal;
        QPointer<QObject> receiver; // QtDBus forgets one that is destroyed earlier
        const char *slot;
    };

    bool connectNow(QString &error);
    bool hook(QDBusConnection to, const BusSignal &signal, QObject *receiver, const char *slot);
    void releaseAll(QDBusConnection from);
    void retry();
    void drop();

    const BusChoice choice;
    QTimer retryTimer;
    QString refusal; // the bus daemon's last; empty when there was none or nobody listened
    bool refusalReported = false; // since the connection was lost
    QVector<Subscription> subscriptions;
    mutable QMutex mutex; // guards the three below
    QDBusConnection current;
    QString currentName;
    bool connected = false;
};

#endif
