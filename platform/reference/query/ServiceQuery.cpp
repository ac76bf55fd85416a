// SPDX-License-Identifier: MIT
// A blocking question to a service, as tools ask it.
#include "ServiceQuery.h"

#include "BusErrors.h"
#include "ClientBus.h"

BusQueryResult queryService(const QDBusMessage &call, const QString &signature,
                            QDBusMessage &answer, QString &errorMessage)
{
    const QSharedPointer<ClientBus> bus = ClientBus::instance(errorMessage);
    if (bus.isNull()) {
        return BusQueryResult::BusNotReachable;
    }
    bool missed = false;
    const QDBusMessage received = bus->call(call, missed);
    if (received.type() != QDBusMessage::ReplyMessage) {
        if (BusErrors::isDisconnected(received)) {
            errorMessage = QStringLiteral("Lost the connection to %1").arg(bus->bus().label());
            return BusQueryResult::BusNotReachable;
        }
        if (BusErrors::isServiceMissing(received)) {
            errorMessage
                = QStringLiteral("No service %1 on %2").arg(call.service(), bus->bus().label());
            return BusQueryResult::ServiceMissing;
        }
        errorMessage = QStringLiteral("%1 %2: %3")
                           .arg(call.service(), call.path(), BusErrors::text(received));
        if (BusErrors::isTimeout(received)) {
            return BusQueryResult::TimedOut;
        }
        return BusErrors::isDenied(received) ? BusQueryResult::Denied
                                             : BusQueryResult::ServiceFailed;
    }
    if (received.signature() != signature) {
        errorMessage = QStringLiteral("%1 %2: the answer's type is \"%3\", not \"%4\"")
                           .arg(call.service(), call.path(), received.signature(), signature);
        return BusQueryResult::ServiceFailed;
    }
    answer = received;
    return BusQueryResult::Ok;
}
