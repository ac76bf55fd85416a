// SPDX-License-Identifier: MIT
// One private libdbus connection in the event loop of its thread.
#ifndef BUSSOCKET_H
#define BUSSOCKET_H

#include "BusSettings.h"
#include "WireMessage.h"

#include <QObject>
#include <QString>

#include <functional>

struct DBusConnection;

/// QtDBus reads every message into objects of its own, answers much by itself and at full length,
/// and does not tell which name a call was sent to. Services that others rely on need to judge a
/// message first, so their connection is libdbus's own.
///
/// Threads: belongs to one with an event loop.
class BusSocket : public QObject
{
    Q_OBJECT

public:
    /// @returns whether the message was a call or signal that it took
    using Handler = std::function<bool(const WireMessage &message)>;

    explicit BusSocket(Handler handler, QObject *parent = nullptr);
    ~BusSocket() override;

    /// Connects; waits for the bus daemon's greeting.
    bool open(const BusChoice &choice, QString &error);
    void close();
    bool isOpen() const { return connection != nullptr; }
    bool isAlive() const; ///< open, and not seen to be closed by the bus daemon

    void send(const WireMessage &message);

    /// Bytes that were given to send() and that the kernel has not taken yet.
    qint64 outgoingBytes() const;

    /// Sends a call and waits for its end: an answer or an error, also when there is no connection.
    WireMessage callAndWait(const WireMessage &message, int milliseconds, QString &error);

    /// @param handler  called once when the call has ended, unless the connection is closed before
    void call(const WireMessage &message, int milliseconds,
              std::function<void(const WireMessage &answer)> handler);

    /// Asks the bus daemon for messages.
    bool addMatch(const QString &rule);

Q_SIGNALS:
    /// Something was read or written.
    void progressed();

    /// The bus daemon is gone. Emitted from the event loop.
    void disconnected();

private:
    friend struct BusSocketHooks; // what libdbus calls
    void dispatchSoon();
    void dispatch();

    const Handler handler;
    DBusConnection *connection = nullptr;
    bool dispatching = false; // it will be, in the next turn of the event loop
};

#endif
