// SPDX-License-Identifier: MIT
// A blocking question to a service, as tools ask it.
#include "ServiceQuery.h"

#include "BusErrors.h"
#include "ClientBus.h"

namespace {

BusQueryResult judgeFailure(const QDBusMessage &call, const QDBusMessage &answer,
                            const QString &bus, QString &errorMessage)
{
    errorMessage
        = QStringLiteral("%1 %2: %3").arg(call.service(), call.path(), BusErrors::text(answer));
    switch (BusErrors::kindOf(answer)) {
    case BusErrors::Kind::Disconnected:
        errorMessage = QStringLiteral("Lost the connection to %1").arg(bus);
        return BusQueryResult::BusNotReachable;
    case BusErrors::Kind::ServiceMissing:
        errorMessage = QStringLiteral("No service %1 on %2").arg(call.service(), bus);
        return BusQueryResult::ServiceMissing;
    case BusErrors::Kind::TimedOut:
        return BusQueryResult::TimedOut;
    case BusErrors::Kind::Denied:
        return BusQueryResult::Denied;
    case BusErrors::Kind::RefusedForNow:
    case BusErrors::Kind::Other:
        break;
    }
    return BusQueryResult::ServiceFailed;
}
}

BusQueryResult askService(const QDBusMessage &call, const char *type, QVariant &value,
                          QString &errorMessage)
{
    const QSharedPointer<ClientBus> bus = ClientBus::instance(errorMessage);
    if (bus.isNull()) {
        return BusQueryResult::BusNotReachable;
    }
    const QDBusMessage answer = bus->call(call);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return judgeFailure(call, answer, bus->bus().label(), errorMessage);
    }
    if (answer.signature() != QLatin1String(type)) {
        errorMessage
            = QStringLiteral("%1 %2: the answer's type is \"%3\", not \"%4\"")
                  .arg(call.service(), call.path(), answer.signature(), QLatin1String(type));
        return BusQueryResult::ServiceFailed;
    }
    value = answer.arguments().at(0);
    return BusQueryResult::Ok;
}
