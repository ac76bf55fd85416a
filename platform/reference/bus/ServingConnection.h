// SPDX-License-Identifier: MIT
// A connection with which a process serves: its names, the objects behind them, their answers.
#ifndef SERVINGCONNECTION_H
#define SERVINGCONNECTION_H

#include "AnswerQueue.h"
#include "BusSocket.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVector>

#include <functional>

/// What stands behind one name.
struct ServedService
{
    qint64
        largestCall; ///< bytes of arguments that its interfaces need at most; larger calls get an error
    QMap<QString, ServedObject *> objects = {}; ///< by path
};

/// Holds several services. A call is answered by the one that it was sent to, so that two may have
/// objects at the same path; one that was sent to the connection itself, by the only service with
/// that path.
///
/// Answers every call itself, with texts of bounded length, and none that wants no answer. What
/// callers have not read yet is bounded: see AnswerQueue. Comes back after the bus daemon restarted.
///
/// Never shares the connection of the process's clients: a client must be able to wait for a
/// service of its own process.
///
/// Threads: belongs to one thread with an event loop, in which its objects answer.
class ServingConnection : public QObject
{
    Q_OBJECT

public:
    enum class NameResult {
        Owned,
        Failed,
        Full, ///< the connection has as many names as the bus daemon gives it
    };
    using OwnerHandler = std::function<void(const QString &name, const QString &owner)>;

    explicit ServingConnection(const BusChoice &choice);
    ~ServingConnection() override;

    const BusChoice &bus() const { return choice; }
    bool isOpen() const { return socket.isOpen(); }

    /// Connects if that was not done yet; waits for the bus daemon's greeting. A connection that
    /// was lost goes on trying by itself.
    bool open(QString &error);
    void close();

    /// @param error  receives the reason, without bus and name
    NameResult takeName(const QString &service, QString &error);
    void releaseName(const QString &service);

    /// @param service  stays the caller's, and may change
    void addService(const QString &name, const ServedService &service)
    {
        services.insert(name, &service);
    }
    void removeService(const QString &name) { services.remove(name); }

    void send(const WireMessage &message) { socket.send(message); }

    /// @param handler  called once in this thread, unless connection or context end before
    void call(const WireMessage &message, int milliseconds, QObject *context,
              std::function<void(const WireMessage &answer)> handler);

    /// Tells who owns a name from now on, until the connection is lost.
    ///
    /// @param name  empty for all names
    /// @returns false if the bus daemon cannot be asked
    bool watchOwners(const QString &name, QObject *context, OwnerHandler handler);

Q_SIGNALS:
    void lost();

    /// A new connection stands after the old one was lost.
    void restored();

private:
    struct OwnerWatch
    {
        QString name;
        QPointer<QObject> context;
        OwnerHandler handler;
    };

    // ServingConnection.cpp: the connection.
    void handleDisconnected();
    void retry();
    bool handleMessage(const WireMessage &message);
    void handleOwnerChanged(const WireMessage &message);

    // ServingConnection_calls.cpp: calls and answers.
    void handleCall(const WireMessage &message);
    void answerWaiting();
    void askCallers();
    BusAnswer answer(const ServedCall &call) const;
    BusAnswer answerStandard(const ServedCall &call, const ServedObject *object,
                             const QStringList &children) const;
    QVector<const ServedService *> servicesOf(const ServedCall &call) const;
    QVector<ServedObject *> objectsOf(const ServedCall &call) const;
    QStringList childrenOf(const ServedCall &call) const;
    qint64 largestCall(const ServedCall &call) const;
    qint64 answerSize(const ServedCall &call) const;
    void sendAnswer(const WireMessage &call, const BusAnswer &answer);

    const BusChoice choice;
    BusSocket socket;
    QTimer retryTimer; // runs while the connection is lost
    QMap<QString, const ServedService *> services; // by name
    QVector<OwnerWatch> ownerWatches;
    QSet<QString> watchedNames; // that the bus daemon was asked for
    AnswerQueue queue;
    int refusals = 0; // since the last that may still be on its way out
    bool answering = false;
};

#endif
