// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#include "BusErrors.h"

#include <QHash>
#include <QLoggingCategory>

#include <dbus/dbus.h>

namespace {

// What was said before it was put in our words; for whoever asks for it.
Q_LOGGING_CATEGORY(originalText, "processdata.bus.original", QtInfoMsg)

struct Sentence
{
    BusErrors::Kind kind;
    const char *beginning; ///< of what bus library and daemon say, in all releases
    const char *ours;
};

// They name possible causes, every field of the message, or files that start services.
constexpr Sentence sentences[]{
    {BusErrors::Kind::TimedOut, "Did not receive a reply", "no answer came in time"},
    {BusErrors::Kind::TimedOut, "Message recipient disconnected", "it ended before it answered"},
    {BusErrors::Kind::Denied, "Rejected ",
     "the policy of the bus does not let this user send that"},
    {BusErrors::Kind::ServiceMissing, "The name ", "nobody owns the service's name"},
    {BusErrors::Kind::ServiceMissing, "Could not get owner of name",
     "nobody owns the service's name"},
};

QString reasonOf(const QString &name, const QString &given)
{
    const BusErrors::Kind kind = BusErrors::kindOf(name);
    for (const Sentence &sentence : sentences) {
        if (kind == sentence.kind && given.startsWith(QLatin1String(sentence.beginning))) {
            qCDebug(originalText).noquote() << name + QStringLiteral(":") << given;
            return QString::fromLatin1(sentence.ours);
        }
    }
    return given;
}

QString textOf(const QString &name, const QString &given)
{
    return QStringLiteral("%1 (%2)").arg(reasonOf(name, given), name);
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

QString BusErrors::reason(const QString &name, const QString &given)
{
    return reasonOf(name, given);
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
