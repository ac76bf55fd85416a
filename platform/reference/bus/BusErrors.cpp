// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#include "BusErrors.h"

#include <QHash>

#include <dbus/dbus.h>

namespace {

// Both begin so in all releases; they name possible causes, or every field of the message.
const QLatin1String noReplyAtLength("Did not receive a reply");
const QLatin1String refusalAtLength("Rejected ");

QString textOf(const QString &name, const QString &given)
{
    const BusErrors::Kind kind = BusErrors::kindOf(name);
    QString reason = given;
    if (kind == BusErrors::Kind::TimedOut && given.startsWith(noReplyAtLength)) {
        reason = QStringLiteral("no answer came in time");
    } else if (kind == BusErrors::Kind::Denied && given.startsWith(refusalAtLength)) {
        reason = QStringLiteral("the policy of the bus does not let this user send that");
    }
    return QStringLiteral("%1 (%2)").arg(reason, name);
}
}

BusErrors::Kind BusErrors::kindOf(const QString &name)
{
    // Never destroyed: bus threads and static objects judge answers to the last.
    static const auto &kinds = *new QHash<QString, Kind>{
        {QStringLiteral(DBUS_ERROR_NO_REPLY), Kind::TimedOut},
        {QStringLiteral(DBUS_ERROR_TIMEOUT), Kind::TimedOut},
        {QStringLiteral(DBUS_ERROR_TIMED_OUT), Kind::TimedOut},
        {QStringLiteral(DBUS_ERROR_LIMITS_EXCEEDED), Kind::RefusedForNow},
        {QStringLiteral(DBUS_ERROR_SERVICE_UNKNOWN), Kind::ServiceMissing},
        // The bus daemon gives this one to calls that must not start a service.
        {QStringLiteral(DBUS_ERROR_NAME_HAS_NO_OWNER), Kind::ServiceMissing},
        {QStringLiteral(DBUS_ERROR_ACCESS_DENIED), Kind::Denied},
        {QStringLiteral(DBUS_ERROR_DISCONNECTED), Kind::Disconnected},
    };
    return kinds.value(name, Kind::Other);
}

QString BusErrors::text(const QDBusMessage &answer)
{
    return textOf(answer.errorName(), answer.errorMessage());
}

QString BusErrors::text(const WireMessage &answer)
{
    return answer == nullptr ? QStringLiteral("the connection to the bus was lost")
                             : textOf(Wire::errorName(answer), Wire::text(answer, 0));
}
