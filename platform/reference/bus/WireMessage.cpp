// SPDX-License-Identifier: MIT
// Messages of a serving connection, as libdbus holds them.
#include "WireMessage.h"

#include <QDBusVariant>
#include <QStringList>

#include <dbus/dbus.h>

namespace {

constexpr int longestErrorText = 400; // characters

bool appendText(DBusMessageIter &place, const QByteArray &utf8)
{
    const char *const text = utf8.constData();
    return dbus_message_iter_append_basic(&place, DBUS_TYPE_STRING, &text) != FALSE;
}

bool appendValue(DBusMessageIter &place, const QVariant &value);

const char *signatureOf(const QVariant &value)
{
    return value.userType() == QMetaType::Bool ? "b" : "s";
}

bool appendVariant(DBusMessageIter &place, const QVariant &value)
{
    DBusMessageIter inner;
    return dbus_message_iter_open_container(&place, DBUS_TYPE_VARIANT, signatureOf(value), &inner)
        != FALSE
        && appendValue(inner, value) && dbus_message_iter_close_container(&place, &inner) != FALSE;
}

bool appendTexts(DBusMessageIter &place, const QStringList &texts)
{
    DBusMessageIter inner;
    bool good = dbus_message_iter_open_container(&place, DBUS_TYPE_ARRAY, "s", &inner) != FALSE;
    for (const QString &text : texts) {
        good = good && appendText(inner, text.toUtf8());
    }
    return good && dbus_message_iter_close_container(&place, &inner) != FALSE;
}

bool appendMap(DBusMessageIter &place, const QVariantMap &map)
{
    DBusMessageIter entries;
    bool good
        = dbus_message_iter_open_container(&place, DBUS_TYPE_ARRAY, "{sv}", &entries) != FALSE;
    for (auto it = map.cbegin(); good && it != map.cend(); ++it) {
        DBusMessageIter entry;
        good = dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry)
                != FALSE
            && appendText(entry, it.key().toUtf8()) && appendVariant(entry, it.value())
            && dbus_message_iter_close_container(&entries, &entry) != FALSE;
    }
    return good && dbus_message_iter_close_container(&place, &entries) != FALSE;
}

bool appendValue(DBusMessageIter &place, const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QString:
        return appendText(place, value.toString().toUtf8());
    case QMetaType::QByteArray:
        return appendText(place, value.toByteArray());
    case QMetaType::Bool: {
        const dbus_bool_t flag = value.toBool() ? TRUE : FALSE;
        return dbus_message_iter_append_basic(&place, DBUS_TYPE_BOOLEAN, &flag) != FALSE;
    }
    case QMetaType::UInt: {
        const dbus_uint32_t number = value.toUInt();
        return dbus_message_iter_append_basic(&place, DBUS_TYPE_UINT32, &number) != FALSE;
    }
    case QMetaType::QStringList:
        return appendTexts(place, value.toStringList());
    case QMetaType::QVariantMap:
        return appendMap(place, value.toMap());
    default:
        break;
    }
    return value.userType() == qMetaTypeId<QDBusVariant>()
        && appendVariant(place, value.value<QDBusVariant>().variant());
}

// Stops once more than the limit was counted.
void measure(DBusMessageIter &place, qint64 limit, qint64 &counted)
{
    constexpr int basicSize = 8; // alignment included
    for (; counted <= limit; dbus_message_iter_next(&place)) {
        const int type = dbus_message_iter_get_arg_type(&place);
        if (type == DBUS_TYPE_INVALID) {
            return;
        }
        counted += basicSize;
        if (type == DBUS_TYPE_STRING || type == DBUS_TYPE_OBJECT_PATH
            || type == DBUS_TYPE_SIGNATURE) {
            const char *text = nullptr;
            dbus_message_iter_get_basic(&place, &text);
            counted += static_cast<qint64>(qstrlen(text));
        } else if (dbus_type_is_container(type) != FALSE) {
            DBusMessageIter inner;
            dbus_message_iter_recurse(&place, &inner);
            measure(inner, limit, counted);
        }
    }
}

// The argument at a position, if it is of the type.
bool goTo(DBusMessage *message, int position, int type, DBusMessageIter &place)
{
    if (dbus_message_iter_init(message, &place) == FALSE) {
        return false;
    }
    for (int i = 0; i < position; ++i) {
        if (dbus_message_iter_next(&place) == FALSE) {
            return false;
        }
    }
    return dbus_message_iter_get_arg_type(&place) == type;
}
}

WireMessage Wire::adopt(DBusMessage *message)
{
    return message == nullptr ? WireMessage() : WireMessage(message, dbus_message_unref);
}

WireMessage Wire::share(DBusMessage *message)
{
    return adopt(dbus_message_ref(message));
}

WireMessage Wire::call(const QString &service, const QString &path, const QString &interface,
                       const QString &member, const QVariantList &values)
{
    WireMessage message = adopt(
        dbus_message_new_method_call(service.toUtf8().constData(), path.toUtf8().constData(),
                                     interface.toUtf8().constData(), member.toUtf8().constData()));
    dbus_message_set_auto_start(message.get(), FALSE);
    append(message, values);
    return message;
}

WireMessage Wire::signal(const QString &path, const QString &interface, const QString &member,
                         const QVariantList &values)
{
    WireMessage message = adopt(dbus_message_new_signal(
        path.toUtf8().constData(), interface.toUtf8().constData(), member.toUtf8().constData()));
    append(message, values);
    return message;
}

WireMessage Wire::reply(const WireMessage &call, const BusAnswer &answer)
{
    if (answer.kind == BusAnswer::Kind::Error) {
        return adopt(dbus_message_new_error(
            call.get(), answer.errorName.toUtf8().constData(),
            shortened(answer.errorText, longestErrorText).toUtf8().constData()));
    }
    WireMessage message = adopt(dbus_message_new_method_return(call.get()));
    append(message, answer.content);
    return message;
}

bool Wire::append(const WireMessage &message, const QVariantList &values)
{
    DBusMessageIter place;
    dbus_message_iter_init_append(message.get(), &place);
    for (const QVariant &value : values) {
        if (!appendValue(place, value)) {
            return false;
        }
    }
    return true;
}

QString Wire::text(const WireMessage &message, int position)
{
    DBusMessageIter place;
    if (message == nullptr || !goTo(message.get(), position, DBUS_TYPE_STRING, place)) {
        return QString();
    }
    const char *text = nullptr;
    dbus_message_iter_get_basic(&place, &text);
    return QString::fromUtf8(text);
}

quint32 Wire::number(const WireMessage &message, int position)
{
    DBusMessageIter place;
    dbus_uint32_t number = 0;
    if (message != nullptr && goTo(message.get(), position, DBUS_TYPE_UINT32, place)) {
        dbus_message_iter_get_basic(&place, &number);
    }
    return number;
}

bool Wire::isReturn(const WireMessage &message)
{
    return message != nullptr
        && dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
}

QString Wire::errorName(const WireMessage &message)
{
    return message == nullptr ? QString()
                              : QString::fromUtf8(dbus_message_get_error_name(message.get()));
}

qint64 Wire::size(const WireMessage &message, qint64 limit)
{
    qint64 counted = static_cast<qint64>(qstrlen(dbus_message_get_path(message.get())));
    DBusMessageIter place;
    if (dbus_message_iter_init(message.get(), &place) != FALSE) {
        measure(place, limit, counted);
    }
    return counted;
}

qint64 Wire::size(const QVariantList &values)
{
    constexpr qint64 smallSize = 256; // header, and arguments that are no texts
    qint64 counted = smallSize;
    for (const QVariant &value : values) {
        if (value.userType() == QMetaType::QStringList) {
            const QStringList texts = value.toStringList();
            for (const QString &text : texts) {
                counted += text.size() + static_cast<int>(sizeof(quint64));
            }
        } else if (value.userType() == QMetaType::QByteArray) {
            counted += value.toByteArray().size();
        } else {
            counted += value.toString().size();
        }
    }
    return counted;
}

QString Wire::shortened(const QString &text, int length)
{
    if (text.size() <= length) {
        return text;
    }
    int end = length - 1;
    if (text.at(end - 1).isHighSurrogate()) {
        --end;
    }
    return text.left(end) + QChar(0x2026);
}
