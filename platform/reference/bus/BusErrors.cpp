// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#include "BusErrors.h"

#include <QDBusError>

namespace {

// Both begin so in all releases; they name possible causes, or every field of the message.
const QLatin1String noReplyAtLength("Did not receive a reply");
const QLatin1String refusalAtLength("Rejected ");

bool isTimeoutType(QDBusError::ErrorType type)
{
    return type == QDBusError::NoReply || type == QDBusError::Timeout
        || type == QDBusError::TimedOut;
}

QString reason(const QString &name, const QString &given)
{
    const QDBusError::ErrorType type = QDBusError(QDBusMessage::createError(name, given)).type();
    if (isTimeoutType(type) && given.startsWith(noReplyAtLength)) {
        return QStringLiteral("no answer came in time");
    }
    if (type == QDBusError::AccessDenied && given.startsWith(refusalAtLength)) {
        return QStringLiteral("the policy of the bus does not let this user send that");
    }
    return given;
}

} // namespace

bool BusErrors::isTimeout(const QDBusMessage &answer)
{
    return isTimeoutType(QDBusError(answer).type());
}

bool BusErrors::isRefusedForNow(const QDBusMessage &answer)
{
    return QDBusError(answer).type() == QDBusError::LimitsExceeded;
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

QString BusErrors::text(const QDBusMessage &answer)
{
    return text(answer.errorName(), answer.errorMessage());
}

QString BusErrors::text(const WireMessage &answer)
{
    return answer == nullptr ? QStringLiteral("the connection to the bus was lost")
                             : text(Wire::errorName(answer), Wire::text(answer, 0));
}

QString BusErrors::text(const QString &name, const QString &given)
{
    return QStringLiteral("%1 (%2)").arg(reason(name, given), name);
}
