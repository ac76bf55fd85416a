// SPDX-License-Identifier: MIT
// Asks a running simulator over its control interface.
#include "ControlClient.h"

#include "BusErrors.h"
#include "BusNames.h"
#include "ClientBus.h"
#include "ControlNames.h"

ControlClient::~ControlClient() = default;

bool ControlClient::open(QString &error)
{
    bus = ClientBus::instance(error);
    return !bus.isNull();
}

ControlAnswer ControlClient::ask(QLatin1String method, const QString &argument) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(ControlNames::service, ControlNames::path,
                                                       ControlNames::interface, method);
    call << argument;
    const QDBusMessage answer = bus->call(call);
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return {ControlAnswer::Done, answer.arguments().value(0).toString()};
    }
    switch (BusErrors::kindOf(answer)) {
    case BusErrors::Kind::TimedOut:
        // The bus says the same of a service that died with the call.
        return isServed()
            ? ControlAnswer{ControlAnswer::TimedOut,
                            QStringLiteral("no answer in time, it may still be under way; "
                                           "--timeout waits longer")}
            : ControlAnswer{ControlAnswer::Gone,
                            QStringLiteral("the simulator ended before it answered")};
    case BusErrors::Kind::ServiceMissing:
        return {ControlAnswer::NoSimulator,
                QStringLiteral("no simulator takes steps on %1; start one with --control or "
                               "--scenario, or choose its bus with PROCESSDATA_BUS")
                    .arg(bus->bus().label())};
    case BusErrors::Kind::Denied:
        return {ControlAnswer::Denied, BusErrors::text(answer)};
    case BusErrors::Kind::Disconnected:
        return {ControlAnswer::NoBus,
                QStringLiteral("lost the connection to %1").arg(bus->bus().label())};
    case BusErrors::Kind::RefusedForNow:
    case BusErrors::Kind::Other:
        break;
    }
    return {ControlAnswer::Refused, answer.errorMessage()};
}

bool ControlClient::isServed() const
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        BusNames::daemonService(), BusNames::daemonPath(), BusNames::daemonInterface(),
        QStringLiteral("NameHasOwner"));
    question << QString(ControlNames::service);
    const QDBusMessage answer = bus->call(question);
    return answer.type() != QDBusMessage::ReplyMessage || answer.arguments().value(0).toBool();
}
