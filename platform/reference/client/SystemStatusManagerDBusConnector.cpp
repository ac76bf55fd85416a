// SPDX-License-Identifier: MIT
// Client of the system status manager.
#include "SystemStatusManagerDBusConnector.h"

#include "BusCall.h"
#include "BusNames.h"
#include "DBusConnectorBasePrivate.h"

#include <QDBusVariant>

#include <utility>

class SystemStatusManagerDBusConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    explicit SystemStatusManagerDBusConnectorPrivate(QSharedPointer<ClientBus> bus)
        : DBusConnectorBasePrivate(std::move(bus), BusNames::statusManagerService(),
                                   BusNames::statusManagerPath())
    {
    }

    SystemStatusManagerDBusConnector *q = nullptr;

protected:
    void handle(const ServiceEvent &event) override
    {
        if (event.kind != ServiceEvent::Kind::Signal) {
            handlePresence(event.argument); // it is never asked for what it could owe
        } else if (event.member == BusNames::propertiesChangedSignal()) {
            foundReady.clear(); // not ready any more: whatever comes is another start-up
        } else if (event.member == BusNames::startupReadySignal()
                   && std::exchange(foundReady, QString()).isEmpty()) {
            report();
        }
    }

private:
    // Whether it is the manager that restarted or the bus: a system that was ready stays so.
    void handlePresence(const QString &owner)
    {
        if (owner != foundReady) {
            foundReady.clear();
        }
        if (!reported) {
            askWhetherReady();
        }
    }

    void askWhetherReady()
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            service, path, BusNames::propertiesInterface(), QStringLiteral("Get"));
        call.setArguments({BusNames::statusManagerInterface(), BusNames::readyProperty()});
        call.setAutoStartService(false);
        // Nobody waits for it, and a manager that hangs must be heard when it is back: no time
        // limit. Without a connection it is asked when the bus is back.
        BusCall::send(bus->connection(), call, noTimeLimit, q, [this](const QDBusMessage &answer) {
            const QVariant ready = answer.arguments().value(0).value<QDBusVariant>().variant();
            if (!reported && answer.type() == QDBusMessage::ReplyMessage
                && ready.type() == QVariant::Bool && ready.toBool()) {
                foundReady = answer.service();
                report();
            }
        });
    }

    void report()
    {
        reported = true;
        Q_EMIT q->orvalisStartupReady(); // may end this object
    }

    bool reported = false;
    // Owner of the manager's name that said so when it was asked. The signal of that start-up may
    // still be on its way then: answers and signals reach this thread by different routes.
    QString foundReady;
};

QSharedPointer<SystemStatusManagerDBusConnector>
SystemStatusManagerDBusConnector::createAndConnect()
{
    QSharedPointer<SystemStatusManagerDBusConnector> connector;
    const QSharedPointer<ClientBus> bus = DBusConnectorBasePrivate::findBus();
    if (!bus.isNull()) {
        connector.reset(
            new SystemStatusManagerDBusConnector(new SystemStatusManagerDBusConnectorPrivate(bus)));
    }
    return connector;
}

SystemStatusManagerDBusConnector::SystemStatusManagerDBusConnector(
    SystemStatusManagerDBusConnectorPrivate *state)
    : DBusConnectorBase(state)
{
    state->q = this;
}

SystemStatusManagerDBusConnector::~SystemStatusManagerDBusConnector() = default;
