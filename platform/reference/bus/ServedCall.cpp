// SPDX-License-Identifier: MIT
// A call to one of our services, and the object that answers it.
#include "ServedCall.h"

#include <dbus/dbus.h>

QString ServedCall::sender() const
{
    return QString::fromUtf8(dbus_message_get_sender(call.get()));
}

QString ServedCall::service() const
{
    return QString::fromUtf8(dbus_message_get_destination(call.get()));
}

QString ServedCall::path() const
{
    return QString::fromUtf8(dbus_message_get_path(call.get()));
}

QString ServedCall::interface() const
{
    return QString::fromUtf8(dbus_message_get_interface(call.get()));
}

QString ServedCall::member() const
{
    return QString::fromUtf8(dbus_message_get_member(call.get()));
}

QString ServedCall::signature() const
{
    return QString::fromUtf8(dbus_message_get_signature(call.get()));
}

bool ServedCall::wantsAnswer() const
{
    return dbus_message_get_no_reply(call.get()) == FALSE;
}

bool ServedCall::isFor(const QString &interfaceName, const char *memberName) const
{
    const QString named = interface();
    return (named.isEmpty() || named == interfaceName) && member() == QLatin1String(memberName);
}
