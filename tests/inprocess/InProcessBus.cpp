// SPDX-License-Identifier: MIT
// Connectors that answer from a table.
#include "InProcessBus.h"

#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QDebug>
#include <QHash>
#include <QPair>
#include <QVector>

using InstanceKey = QPair<QString, QString>; // object's key, instance

struct InProcessBusState
{
    QHash<InstanceKey, QString> descriptions;
    QVector<DBusProcessDescriptionConnector *> connectors;
    int blockingFetches = 0;
    int asynchronousFetches = 0;
};

static InProcessBusState &state()
{
    static InProcessBusState bus;
    return bus;
}

static QString objectKey(const QString &moduleName, const QString &objectName)
{
    return moduleName + QLatin1Char('_') + objectName;
}

class DBusConnectorBasePrivate
{
public:
    explicit DBusConnectorBasePrivate(QString objectKey)
        : objectKey(std::move(objectKey))
    {
    }
    const QString objectKey;
};

class DBusProcessDescriptionConnectorPrivate : public DBusConnectorBasePrivate
{
public:
    using DBusConnectorBasePrivate::DBusConnectorBasePrivate;

    static QSharedPointer<DBusProcessDescriptionConnector> make(const QString &key)
    {
        return QSharedPointer<DBusProcessDescriptionConnector>(
            new DBusProcessDescriptionConnector(new DBusProcessDescriptionConnectorPrivate(key)));
    }
    static void announce(const QString &key, const QString &instanceName)
    {
        const auto connectors = state().connectors;
        for (auto *connector : connectors) {
            if (connector->d->objectKey == key) {
                Q_EMIT connector->processDataDescriptionChanged(instanceName);
            }
        }
    }
};

class SystemStatusManagerDBusConnectorPrivate : public DBusConnectorBasePrivate
{
};

class DBusPendingReplyPrivate
{
public:
    QString description;

    static void finishLater(const QSharedPointer<DBusPendingReply> &reply)
    {
        QMetaObject::invokeMethod(reply.data(), &DBusPendingReply::dBusServiceFinished,
                                  Qt::QueuedConnection);
    }
};

void InProcessBus::serve(const QString &moduleName, const QString &objectName,
                         const QString &instanceName, const QString &description)
{
    state().descriptions.insert({objectKey(moduleName, objectName), instanceName}, description);
}

void InProcessBus::clear()
{
    state().descriptions.clear();
    state().blockingFetches = 0;
    state().asynchronousFetches = 0;
}

int InProcessBus::blockingFetches()
{
    return state().blockingFetches;
}

int InProcessBus::asynchronousFetches()
{
    return state().asynchronousFetches;
}

void InProcessBus::announce(const QString &moduleName, const QString &objectName,
                            const QString &instanceName)
{
    DBusProcessDescriptionConnectorPrivate::announce(objectKey(moduleName, objectName),
                                                     instanceName);
}

DBusConnectorBase::DBusConnectorBase(DBusConnectorBasePrivate *state)
    : d(state)
{
}

DBusConnectorBase::~DBusConnectorBase() = default;

bool DBusConnectorBase::isDBusInterfaceValid() const
{
    return true;
}

DBusProcessDescriptionConnector::DBusProcessDescriptionConnector(
    DBusProcessDescriptionConnectorPrivate *state)
    : DBusConnectorBase(state)
{
    ::state().connectors.append(this);
}

DBusProcessDescriptionConnector::~DBusProcessDescriptionConnector()
{
    state().connectors.removeOne(this);
}

QSharedPointer<DBusProcessDescriptionConnector>
DBusProcessDescriptionConnector::createAndConnect(const QString &moduleName,
                                                  const QString &objectName)
{
    return DBusProcessDescriptionConnectorPrivate::make(objectKey(moduleName, objectName));
}

DBusReply DBusProcessDescriptionConnector::getProcessDataDescription(const QString &instanceName,
                                                                     const QString &reserved) const
{
    Q_UNUSED(reserved)
    ++state().blockingFetches;
    const auto found = state().descriptions.constFind({d->objectKey, instanceName});
    if (found == state().descriptions.constEnd()) {
        return DBusReply::fromError(QStringLiteral("no such instance"));
    }
    return DBusReply::fromValue(*found);
}

QSharedPointer<DBusPendingReply>
DBusProcessDescriptionConnector::getProcessDataDescriptionAsynchron(const QString &instanceName,
                                                                    const QString &reserved) const
{
    Q_UNUSED(reserved)
    ++state().asynchronousFetches;
    auto *pending = new DBusPendingReplyPrivate;
    pending->description = state().descriptions.value({d->objectKey, instanceName});
    const auto reply = QSharedPointer<DBusPendingReply>::create(pending);
    DBusPendingReplyPrivate::finishLater(reply);
    return reply;
}

DBusPendingReply::DBusPendingReply(DBusPendingReplyPrivate *state)
    : d(state)
{
}

DBusPendingReply::~DBusPendingReply() = default;

QVariant DBusPendingReply::getReply()
{
    return d->description;
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
    return {};
}

QDebug operator<<(QDebug debug, const ErrorContainer &error)
{
    return debug << error.getCode() << error.getText();
}
