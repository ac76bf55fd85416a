// SPDX-License-Identifier: MIT
// One private libdbus connection in the event loop of its thread.
#include "BusSocket.h"

#include "BusEventLoop.h"
#include "BusThread.h"

#include <dbus/dbus.h>

#include <limits>
#include <utility>

namespace {

// libdbus stops reading while received messages of this size wait or are held.
constexpr long mostReceived = 16 << 20;

QString takeText(DBusError &error)
{
    QString text = QString::fromUtf8(error.message);
    dbus_error_free(&error);
    return text;
}

DBusConnection *openPrivate(const BusChoice &choice, DBusError *error)
{
    switch (choice.which()) {
    case BusChoice::Kind::System:
        return dbus_bus_get_private(DBUS_BUS_SYSTEM, error);
    case BusChoice::Kind::Session:
        return dbus_bus_get_private(DBUS_BUS_SESSION, error);
    case BusChoice::Kind::Address:
        break;
    }
    DBusConnection *connection
        = dbus_connection_open_private(choice.where().toUtf8().constData(), error);
    if (connection != nullptr && dbus_bus_register(connection, error) == FALSE) {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
        return nullptr;
    }
    return connection;
}

void release(DBusConnection *connection)
{
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}

using AnswerHandler = std::function<void(const WireMessage &)>;

void callHandler(DBusPendingCall *call, void *data)
{
    const WireMessage answer = Wire::adopt(dbus_pending_call_steal_reply(call));
    (*static_cast<AnswerHandler *>(data))(answer);
}

void freeHandler(void *data)
{
    delete static_cast<AnswerHandler *>(data);
}
}

struct BusSocketHooks
{
    static void statusChanged(DBusConnection * /*connection*/, DBusDispatchStatus status,
                              void *data)
    {
        if (status == DBUS_DISPATCH_DATA_REMAINS) {
            static_cast<BusSocket *>(data)->dispatchSoon();
        }
    }

    static DBusHandlerResult filter(DBusConnection * /*connection*/, DBusMessage *message,
                                    void *data)
    {
        auto *const socket = static_cast<BusSocket *>(data);
        if (dbus_message_is_signal(message, DBUS_INTERFACE_LOCAL, "Disconnected") != FALSE) {
            QMetaObject::invokeMethod(socket, &BusSocket::disconnected, Qt::QueuedConnection);
            return DBUS_HANDLER_RESULT_HANDLED;
        }
        return socket->handler(Wire::share(message)) ? DBUS_HANDLER_RESULT_HANDLED
                                                     : DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
};

BusSocket::BusSocket(Handler handler, QObject *parent)
    : QObject(parent)
    , handler(std::move(handler))
{
}

BusSocket::~BusSocket()
{
    close();
}

bool BusSocket::open(const BusChoice &choice, QString &error)
{
    if (!BusThread::canStart(error)) {
        return false;
    }
    DBusError reason = DBUS_ERROR_INIT;
    DBusConnection *const fresh = openPrivate(choice, &reason);
    if (fresh == nullptr) {
        error = takeText(reason);
        return false;
    }
    dbus_connection_set_exit_on_disconnect(fresh, FALSE);
    dbus_connection_set_max_received_size(fresh, mostReceived);
    const bool ready
        = dbus_connection_add_filter(fresh, BusSocketHooks::filter, this, nullptr) != FALSE
        && BusEventLoop::attach(fresh, this, [this] { Q_EMIT progressed(); });
    if (!ready) {
        error = QStringLiteral("not enough memory");
        BusEventLoop::detach(fresh);
        release(fresh);
        return false;
    }
    dbus_connection_set_dispatch_status_function(fresh, BusSocketHooks::statusChanged, this,
                                                 nullptr);
    connection = fresh;
    dispatchSoon(); // what came with the greeting
    return true;
}

void BusSocket::close()
{
    DBusConnection *const old = std::exchange(connection, nullptr);
    if (old == nullptr) {
        return;
    }
    dbus_connection_set_dispatch_status_function(old, nullptr, nullptr, nullptr);
    dbus_connection_remove_filter(old, BusSocketHooks::filter, this);
    dbus_connection_close(old);
    BusEventLoop::detach(old);
    dbus_connection_unref(old);
}

bool BusSocket::isAlive() const
{
    return connection != nullptr && dbus_connection_get_is_connected(connection) != FALSE;
}

void BusSocket::send(const WireMessage &message)
{
    if (connection != nullptr && message != nullptr) {
        dbus_connection_send(connection, message.get(), nullptr);
    }
}

qint64 BusSocket::outgoingBytes() const
{
    return connection == nullptr ? 0 : dbus_connection_get_outgoing_size(connection);
}

WireMessage BusSocket::callAndWait(const WireMessage &message, int milliseconds, QString &error)
{
    if (connection == nullptr) {
        error = QStringLiteral("Not connected to the bus");
        return WireMessage();
    }
    // The answer must be read whatever came before it.
    dbus_connection_set_max_received_size(connection, std::numeric_limits<int>::max());
    DBusError reason = DBUS_ERROR_INIT;
    WireMessage answer = Wire::adopt(dbus_connection_send_with_reply_and_block(
        connection, message.get(), milliseconds, &reason));
    dbus_connection_set_max_received_size(connection, mostReceived);
    if (answer == nullptr) {
        const QString name = QString::fromUtf8(reason.name);
        error = QStringLiteral("%1 (%2)").arg(takeText(reason), name);
    }
    dispatchSoon();
    return answer;
}

void BusSocket::call(const WireMessage &message, int milliseconds, AnswerHandler handler)
{
    DBusPendingCall *pending = nullptr;
    if (connection == nullptr
        || dbus_connection_send_with_reply(connection, message.get(), &pending, milliseconds)
            == FALSE
        || pending == nullptr) {
        return; // the connection is gone, which is told in its turn
    }
    dbus_pending_call_set_notify(pending, callHandler, new AnswerHandler(std::move(handler)),
                                 freeHandler);
    dbus_pending_call_unref(pending);
}

bool BusSocket::addMatch(const QString &rule)
{
    if (connection == nullptr) {
        return false;
    }
    dbus_bus_add_match(connection, rule.toUtf8().constData(), nullptr);
    return isAlive();
}

void BusSocket::dispatchSoon()
{
    if (!std::exchange(dispatching, true)) {
        QMetaObject::invokeMethod(this, &BusSocket::dispatch, Qt::QueuedConnection);
    }
}

// A flood of messages leaves room for what else the thread has to do.
void BusSocket::dispatch()
{
    constexpr int mostAtOnce = 64;
    dispatching = false;
    for (int i = 0; i < mostAtOnce; ++i) {
        if (connection == nullptr
            || dbus_connection_dispatch(connection) != DBUS_DISPATCH_DATA_REMAINS) {
            break;
        }
    }
    if (connection != nullptr
        && dbus_connection_get_dispatch_status(connection) == DBUS_DISPATCH_DATA_REMAINS) {
        dispatchSoon();
    }
    Q_EMIT progressed();
}
