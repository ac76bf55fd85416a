// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#include "BusErrors.h"

#include <QDBusError>

bool BusErrors::isTimeout(const QDBusMessage &answer)
{
    const QDBusError::ErrorType type = QDBusError(answer).type();
    return type == QDBusError::NoReply || type == QDBusError::Timeout
        || type == QDBusError::TimedOut;
}

bool BusErrors::isServiceMissing(const QDBusMessage &answer)
{
    // The bus daemon gives the second one to calls that must not start a service.
    return QDBusError(answer).type() == QDBusError::ServiceUnknown
        || answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

bool BusErrors::isDenied(const QDBusMessage &answer)
{
    return QDBusError(answer).type() == QDBusError::AccessDenied;
}

bool BusErrors::isDisconnected(const QDBusMessage &answer)
{
    return QDBusError(answer).type() == QDBusError::Disconnected;
}
