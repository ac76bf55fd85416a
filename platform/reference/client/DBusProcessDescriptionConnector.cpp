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
    // What the asynchronous fetch brought need not be sent again: the service only says that it
    // still is the same. One that does not know the question sends it all.
    const PreparedDescriptionPointer expected = reserved.isEmpty()
        ? state.memory->expectedOf(instanceName)
        : PreparedDescriptionPointer();
    const QDBusMessage call = descriptionCall(state.service, state.path, instanceName,
                                              expected.isNull() ? reserved : expected->token);
    state.memory->noteAsked(instanceName);
    // Before the call: another thread may hear that the service answers again before this one goes
    // on.
    state.memory->noteMissed(instanceName);
    bool missed = false;
    const QDBusMessage answer = state.bus->call(call, missed);
    if (missed) {
        state.memory->noteMissed(
            instanceName); // again: it may have been forgotten with an earlier owner
    } else {
        state.memory->forgetMissed(instanceName);
    }
    const DescriptionReply judged = judgeDescriptionReply(call, answer);
    if (!expected.isNull() && judged.error.getCode() == 0) {
        const QString text = judged.value.toString();
        if (text == expected->token || text == expected->text) {
            return DBusReply::fromValue(expected->text);
        }
        state.memory->forgetExpected(instanceName);
    }
    return judged.error.getCode() == 0 ? DBusReply::fromValue(judged.value)
                                       : DBusReply::fromError(judged.error.getText());
}

QSharedPointer<DBusPendingReply>
DBusProcessDescriptionConnector::getProcessDataDescriptionAsynchron(const QString &instanceName,
                                                                    const QString &reserved) const
{
    const auto &state = DBusProcessDescriptionConnectorPrivate::of(*this);
    state.memory->noteAsked(instanceName);
    return DBusPendingReplyPrivate::send(
        state.bus, descriptionCall(state.service, state.path, instanceName, reserved), state.memory,
        thread());
}

DBusProcessDescriptionConnectorPrivate::DBusProcessDescriptionConnectorPrivate(
    QSharedPointer<ClientBus> bus, const QString &moduleName, const QString &objectName)
    : DBusConnectorBasePrivate(std::move(bus), BusNames::serviceOfModule(moduleName),
                               BusNames::pathOfObject(objectName))
    , memory(QSharedPointer<FetchMemory>::create())
{
}

const DBusProcessDescriptionConnectorPrivate &
DBusProcessDescriptionConnectorPrivate::of(const DBusProcessDescriptionConnector &q)
{
    return static_cast<const DBusProcessDescriptionConnectorPrivate &>(*q.d);
}

// What an earlier owner owes is settled by what this one says next. Forgotten here, not when the
// connector's thread comes to hear of it: by then the new owner may hang in turn.
void DBusProcessDescriptionConnectorPrivate::servicePresent(Presence presence, const QString &owner)
{
    if (presence != Presence::Found) {
        memory->takeMissed();
    }
    DBusConnectorBasePrivate::servicePresent(presence, owner);
}

bool DBusProcessDescriptionConnectorPrivate::hasAskedFor(const QString &instanceName) const
{
    return memory->wasAsked(instanceName);
}

void DBusProcessDescriptionConnectorPrivate::handlePresence(Presence presence, const QString &owner)
{
    Q_UNUSED(owner)
    // Found: the first fetch is still to come. Appeared: the service announces all that it has.
    if (presence == Presence::FoundAgain) {
        announceAll();
    }
}

void DBusProcessDescriptionConnectorPrivate::handleAnswersAgain()
{
    announce(memory->takeMissed());
}

void DBusProcessDescriptionConnectorPrivate::handleSignal(const QString &member,
                                                          const QString &argument)
{
    if (member == BusNames::processDescriptionChangedSignal()) {
        Q_EMIT q->processDataDescriptionChanged(argument);
    } else if (member == BusNames::propertyChangedSignal()) {
        Q_EMIT q->propertyChanged(argument);
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
        const bool isList = answer.type() == QDBusMessage::ReplyMessage
            && answer.signature() == QLatin1String("as");
        announce(isList ? answer.arguments().at(0).toStringList() : memory->allAsked());
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
