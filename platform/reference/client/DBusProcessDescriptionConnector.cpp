// SPDX-License-Identifier: MIT
// Client of the process-description service of one object of one module.
#include "DBusProcessDescriptionConnector.h"

#include "BusCall.h"
#include "BusNames.h"
#include "DBusPendingReplyPrivate.h"
#include "DBusProcessDescriptionConnectorPrivate.h"
#include "DescriptionReply.h"

#include <QPointer>

#include <utility>

QSharedPointer<DBusProcessDescriptionConnector>
DBusProcessDescriptionConnector::createAndConnect(const QString &moduleName,
                                                  const QString &objectName)
{
    QSharedPointer<DBusProcessDescriptionConnector> connector;
    const QSharedPointer<ClientBus> bus = DBusConnectorBasePrivate::findBus();
    if (!bus.isNull()) {
        connector.reset(new DBusProcessDescriptionConnector(
            new DBusProcessDescriptionConnectorPrivate(bus, moduleName, objectName)));
    }
    return connector;
}

DBusProcessDescriptionConnector::DBusProcessDescriptionConnector(
    DBusProcessDescriptionConnectorPrivate *state)
    : DBusConnectorBase(state)
{
    state->q = this;
}

DBusProcessDescriptionConnector::~DBusProcessDescriptionConnector() = default;

DBusReply DBusProcessDescriptionConnector::getProcessDataDescription(const QString &instanceName,
                                                                     const QString &reserved) const
{
    const auto &state = DBusProcessDescriptionConnectorPrivate::of(*this);
    PreparedDescriptionPointer announced;
    state.bus->withTable(
        [&](ServiceTable &table) { announced = table.noteAsked(&state, instanceName); });
    // What the asynchronous fetch brought need not be sent again: the service only says that it
    // still is the same. One that does not know the question sends it all.
    const PreparedDescriptionPointer expected
        = reserved.isEmpty() ? announced : PreparedDescriptionPointer();
    const QDBusMessage call = descriptionCall(state.service, state.path, instanceName,
                                              expected.isNull() ? reserved : expected->token);
    const DescriptionReply judged = judgeDescriptionReply(call, state.bus->call(call, &state));
    if (judged.error.getCode() != 0) {
        return DBusReply::fromError(judged.error.getText());
    }
    if (!expected.isNull()) {
        const QString text = judged.value.toString();
        if (text == expected->token || text == expected->text) {
            return DBusReply::fromValue(expected->text);
        }
        state.bus->withTable(
            [&](ServiceTable &table) { announced = table.expect(&state, instanceName, {}); });
    }
    return DBusReply::fromValue(judged.value);
}

QSharedPointer<DBusPendingReply>
DBusProcessDescriptionConnector::getProcessDataDescriptionAsynchron(const QString &instanceName,
                                                                    const QString &reserved) const
{
    const auto &state = DBusProcessDescriptionConnectorPrivate::of(*this);
    state.bus->withTable([&](ServiceTable &table) { table.noteAsked(&state, instanceName); });
    return DBusPendingReplyPrivate::send(
        *this, descriptionCall(state.service, state.path, instanceName, reserved));
}

DBusProcessDescriptionConnectorPrivate::DBusProcessDescriptionConnectorPrivate(
    QSharedPointer<ClientBus> bus, const QString &moduleName, const QString &objectName)
    : DBusConnectorBasePrivate(std::move(bus), BusNames::serviceOfModule(moduleName),
                               BusNames::pathOfObject(objectName))
{
}

const DBusProcessDescriptionConnectorPrivate &
DBusProcessDescriptionConnectorPrivate::of(const DBusProcessDescriptionConnector &q)
{
    return static_cast<const DBusProcessDescriptionConnectorPrivate &>(*q.d);
}

void DBusProcessDescriptionConnectorPrivate::handle(const ServiceEvent &event)
{
    // Found: the first fetch is still to come. Appeared: the service announces all that it has.
    if (event.kind == ServiceEvent::Kind::FoundAgain) {
        announceAll();
    } else if (event.kind == ServiceEvent::Kind::AnswersAgain
               || event.member == BusNames::processDescriptionChangedSignal()) {
        Q_EMIT q->processDataDescriptionChanged(event.argument);
    } else if (event.member == BusNames::propertyChangedSignal()) {
        Q_EMIT q->propertyChanged(event.argument);
    }
}

// The service announced its instances while the bus was away or unheard: say it in its place.
void DBusProcessDescriptionConnectorPrivate::announceAll()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, BusNames::processDescriptionInterface(), QStringLiteral("ListInstances"));
    call.setAutoStartService(false);
    // Without a connection the service is found once more when the bus is back.
    BusCall::send(bus->connection(), call, callTimeLimit(), q, [this](const QDBusMessage &answer) {
        QStringList instances;
        if (answer.type() == QDBusMessage::ReplyMessage
            && answer.signature() == QLatin1String("as")) {
            instances = answer.arguments().at(0).toStringList();
        } else {
            bus->withTable([&](ServiceTable &table) { instances = table.askedBy(this); });
        }
        announce(instances);
    });
}

void DBusProcessDescriptionConnectorPrivate::announce(const QStringList &instanceNames)
{
    const QPointer<DBusProcessDescriptionConnector> alive(q);
    for (const QString &instanceName : instanceNames) {
        Q_EMIT q->processDataDescriptionChanged(instanceName);
        if (alive.isNull()) {
            return;
        }
    }
}
