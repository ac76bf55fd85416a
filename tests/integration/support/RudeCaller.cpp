// SPDX-License-Identifier: MIT
// A connection that calls without manners: as much at once as the bus takes, and without reading.
#include "RudeCaller.h"

#include <QElapsedTimer>

#include <dbus/dbus.h>

#include <limits>

namespace {

constexpr int timeLimit = 60000; // milliseconds, for a machine under load
}

RudeCaller::Call RudeCaller::fetch(const QByteArray &service, bool wantsAnswer)
{
    Call call = list(service);
    call.member = "GetProcessDataDescription";
    call.texts = {"1", ""};
    call.wantsAnswer = wantsAnswer;
    return call;
}

RudeCaller::Call RudeCaller::list(const QByteArray &service, const QByteArray &object)
{
    return {service,
            "/com/orvalis/ProcessData/" + object,
            "com.orvalis.ProcessDescription1",
            "ListInstances",
            {}};
}

RudeCaller::RudeCaller(const QString &address)
    : connection(dbus_connection_open_private(address.toUtf8().constData(), nullptr))
{
    if (connection != nullptr) {
        dbus_connection_set_exit_on_disconnect(connection, FALSE);
        dbus_bus_register(connection, nullptr);
    }
}

RudeCaller::~RudeCaller()
{
    if (connection != nullptr) {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
}

bool RudeCaller::isConnected() const
{
    return connection != nullptr && dbus_connection_get_is_connected(connection) != FALSE;
}

void RudeCaller::stopReading()
{
    dbus_connection_set_max_received_size(connection, 1);
}

void RudeCaller::readAgain()
{
    dbus_connection_set_max_received_size(connection, std::numeric_limits<int>::max());
}

DBusMessage *RudeCaller::make(const Call &call)
{
    DBusMessage *const message
        = dbus_message_new_method_call(call.service.constData(), call.path.constData(),
                                       call.interface.constData(), call.member.constData());
    for (const QByteArray &each : call.texts) {
        const char *const text = each.constData();
        dbus_message_append_args(message, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    }
    dbus_message_set_no_reply(message, call.wantsAnswer ? FALSE : TRUE);
    return message;
}

void RudeCaller::send(const Call &call, int count)
{
    DBusMessage *const pattern = make(call);
    for (int i = 0; i < count; ++i) {
        DBusMessage *const message = dbus_message_copy(pattern);
        dbus_connection_send(connection, message, nullptr);
        dbus_message_unref(message);
    }
    dbus_message_unref(pattern);
    dbus_connection_flush(connection);
}

bool RudeCaller::readOnce(Answer &answer, unsigned &serial)
{
    QElapsedTimer timer;
    timer.start();
    while (isConnected() && timer.elapsed() < timeLimit) {
        DBusMessage *const message = dbus_connection_pop_message(connection);
        if (message == nullptr) {
            dbus_connection_read_write(connection, 100);
            continue;
        }
        const int type = dbus_message_get_type(message);
        if (dbus_message_is_method_call(message, DBUS_INTERFACE_PEER, "Ping") != FALSE) {
            DBusMessage *const pong = dbus_message_new_method_return(message);
            dbus_connection_send(connection, pong, nullptr);
            dbus_message_unref(pong);
        }
        const bool isAnswer
            = type == DBUS_MESSAGE_TYPE_METHOD_RETURN || type == DBUS_MESSAGE_TYPE_ERROR;
        if (isAnswer) {
            const char *text = nullptr;
            dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
            constexpr int mostKept = 1000;
            answer = {true, dbus_message_get_error_name(message), QByteArray(text).left(mostKept),
                      static_cast<int>(qstrlen(text))};
            serial = dbus_message_get_reply_serial(message);
        }
        dbus_message_unref(message);
        if (isAnswer) {
            return true;
        }
    }
    return false;
}

QVector<RudeCaller::Answer> RudeCaller::takeAnswers(int count)
{
    QVector<Answer> answers;
    Answer answer;
    unsigned serial = 0;
    while (answers.size() < count && readOnce(answer, serial)) {
        answers += answer;
    }
    return answers;
}

RudeCaller::Answer RudeCaller::ask(const Call &call)
{
    DBusMessage *const message = make(call);
    unsigned wanted = 0;
    dbus_connection_send(connection, message, &wanted);
    dbus_message_unref(message);
    otherAnswers = 0;
    Answer answer;
    unsigned serial = 0;
    while (readOnce(answer, serial)) {
        if (serial == wanted) {
            return answer;
        }
        ++otherAnswers;
    }
    return Answer();
}

QByteArray RudeCaller::ownerOf(const QByteArray &name)
{
    const QByteArray bus = DBUS_SERVICE_DBUS;
    return ask({bus, DBUS_PATH_DBUS, bus, "GetNameOwner", {name}}).text;
}
