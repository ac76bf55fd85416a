// SPDX-License-Identifier: MIT
// Connectors to services that exist in the script only.
#include "CallRecord.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "Script.h"
#include "ScriptedPendingReply.h"
#include "SystemStatusManagerDBusConnector.h"

namespace {

const QString descriptionClass = QStringLiteral("DBusProcessDescriptionConnector");
const QString statusClass = QStringLiteral("SystemStatusManagerDBusConnector");

} // namespace

class DBusConnectorBasePrivate
{
public:
    explicit DBusConnectorBasePrivate(const QString &className, const QString &id)
        : className(className)
        , id(id)
    {
    }
    virtual ~DBusConnectorBasePrivate() = default;
    DBusConnectorBasePrivate(const DBusConnectorBasePrivate &) = delete;
    DBusConnectorBasePrivate &operator=(const DBusConnectorBasePrivate &) = delete;
    virtual bool interfaceValid() const { return true; }

    const QString className;
    const QString id;
};

class DBusProcessDescriptionConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    DBusProcessDescriptionConnectorPrivate(const QString &moduleName, const QString &objectName,
                                           const QSharedPointer<ServiceScript> &service)
        : DBusConnectorBasePrivate(descriptionClass, moduleName + QLatin1Char('/') + objectName)
        , moduleName(moduleName)
        , objectName(objectName)
        , service(service)
    {
    }

    bool interfaceValid() const override { return service->interfaceValid; }

    static QSharedPointer<DBusProcessDescriptionConnector>
    make(const QString &moduleName, const QString &objectName,
         const QSharedPointer<ServiceScript> &service)
    {
        auto *connector = new DBusProcessDescriptionConnector(
            new DBusProcessDescriptionConnectorPrivate(moduleName, objectName, service));
        service->connectors.append(connector);
        return QSharedPointer<DBusProcessDescriptionConnector>(connector);
    }

    static const DBusProcessDescriptionConnectorPrivate &
    of(const DBusProcessDescriptionConnector *connector)
    {
        return static_cast<const DBusProcessDescriptionConnectorPrivate &>(*connector->d);
    }

    QSharedPointer<SourceScript> source(const QString &instanceName) const
    {
        return Script::find(moduleName, objectName, instanceName);
    }

    const QString moduleName;
    const QString objectName;
    const QSharedPointer<ServiceScript> service;
};

class SystemStatusManagerDBusConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    SystemStatusManagerDBusConnectorPrivate()
        : DBusConnectorBasePrivate(statusClass, QString())
    {
    }

    static QSharedPointer<SystemStatusManagerDBusConnector> make()
    {
        return QSharedPointer<SystemStatusManagerDBusConnector>(
            new SystemStatusManagerDBusConnector(new SystemStatusManagerDBusConnectorPrivate));
    }
};

DBusConnectorBase::DBusConnectorBase(DBusConnectorBasePrivate *state)
    : d(state)
{
    CallRecord::instance().born(d->className);
}

DBusConnectorBase::~DBusConnectorBase()
{
    CallRecord::instance().died(d->className, d->id);
}

bool DBusConnectorBase::isDBusInterfaceValid() const
{
    CallRecord::instance().called(d->className, d->id, QStringLiteral("isDBusInterfaceValid"));
    return d->interfaceValid();
}

DBusProcessDescriptionConnector::DBusProcessDescriptionConnector(
    DBusProcessDescriptionConnectorPrivate *state)
    : DBusConnectorBase(state)
{
}

DBusProcessDescriptionConnector::~DBusProcessDescriptionConnector() = default;

QSharedPointer<DBusProcessDescriptionConnector>
DBusProcessDescriptionConnector::createAndConnect(const QString &moduleName,
                                                  const QString &objectName)
{
    CallRecord::instance().called(descriptionClass, QString(), QStringLiteral("createAndConnect"),
                                  {CallRecord::quoted(moduleName), CallRecord::quoted(objectName)});
    const QSharedPointer<ServiceScript> service = Script::service(moduleName, objectName);
    if (service.isNull() || service->connectorMissing) {
        return {};
    }
    return DBusProcessDescriptionConnectorPrivate::make(moduleName, objectName, service);
}

DBusReply DBusProcessDescriptionConnector::getProcessDataDescription(const QString &instanceName,
                                                                     const QString &reserved) const
{
    CallRecord::instance().called(descriptionClass, d->id,
                                  QStringLiteral("getProcessDataDescription"),
                                  {CallRecord::quoted(instanceName), CallRecord::quoted(reserved)});
    const auto source = DBusProcessDescriptionConnectorPrivate::of(this).source(instanceName);
    if (source.isNull()) {
        return DBusReply::fromError(QStringLiteral("no such instance in the script"));
    }
    const QString problem = source->fetchProblem();
    return problem.isNull() ? DBusReply::fromValue(source->description)
                            : DBusReply::fromError(problem);
}

QSharedPointer<DBusPendingReply>
DBusProcessDescriptionConnector::getProcessDataDescriptionAsynchron(const QString &instanceName,
                                                                    const QString &reserved) const
{
    CallRecord::instance().called(descriptionClass, d->id,
                                  QStringLiteral("getProcessDataDescriptionAsynchron"),
                                  {CallRecord::quoted(instanceName), CallRecord::quoted(reserved)});
    const auto source = DBusProcessDescriptionConnectorPrivate::of(this).source(instanceName);
    if (source.isNull() || !source->placesCalls) {
        return {};
    }
    QSharedPointer<DBusPendingReply> reply = makePendingReply(source);
    source->replies.append(ScriptedReply(reply));
    return reply;
}

SystemStatusManagerDBusConnector::SystemStatusManagerDBusConnector(
    SystemStatusManagerDBusConnectorPrivate *state)
    : DBusConnectorBase(state)
{
}

SystemStatusManagerDBusConnector::~SystemStatusManagerDBusConnector() = default;

QSharedPointer<SystemStatusManagerDBusConnector>
SystemStatusManagerDBusConnector::createAndConnect()
{
    CallRecord::instance().called(statusClass, QString(), QStringLiteral("createAndConnect"));
    Script *script = Script::current();
    if (script == nullptr || !script->statusManager) {
        return {};
    }
    auto connector = SystemStatusManagerDBusConnectorPrivate::make();
    script->statusManagers.append(connector.data());
    return connector;
}
