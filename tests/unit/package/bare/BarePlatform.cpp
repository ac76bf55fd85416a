// SPDX-License-Identifier: MIT
// A platform that declares next to nothing beyond the contract: names, URLs, connectors. Without a
// device (BareDevice.h) it reaches nothing.
#include "BareDevice.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "JsonFunctions.h"
#include "PropertyManagerConst.h"
#include "SelectorUrlHandler.h"
#include "SystemInformationManagerRegistryDefinitions.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QJsonDocument>
#include <QUrl>

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly()
{
    static const QString text = QStringLiteral("readOnly");
    return text;
}
const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList()
{
    static const QString text = QStringLiteral("selectorTypeList");
    return text;
}
const QString &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
{
    static const QString text = QStringLiteral("processdata");
    return text;
}
const QString &SystemInformationManagerRegistryDefinitions::getKeyModuleName()
{
    static const QString text = QStringLiteral("module");
    return text;
}
const QString &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
{
    static const QString text = QStringLiteral("additional");
    return text;
}
const QString &PropertyManagerConst::getProcessDataDescriptionFileExtension()
{
    static const QString text = QStringLiteral("bare");
    return text;
}

SelectorUrlHandler::SelectorUrlHandler(const QString &selectorUrl)
{
    parts[0] = selectorUrl.section(QStringLiteral("://"), 0, 0);
    const QString place
        = selectorUrl.section(QStringLiteral("://"), 1).section(QLatin1Char('?'), 0, 0);
    for (int i = 0; i < 3; ++i) {
        parts[i + 1] = QUrl::fromPercentEncoding(place.section(QLatin1Char('/'), i, i).toUtf8());
    }
    parts[4] = selectorUrl;
    deactivated = selectorUrl.endsWith(QLatin1String("?deactivated"));
}
SelectorUrlHandler::~SelectorUrlHandler() = default;
bool SelectorUrlHandler::isValid() const
{
    return !parts[1].isEmpty() && !parts[2].isEmpty();
}
QString SelectorUrlHandler::getScheme() const
{
    return parts[0];
}
QString SelectorUrlHandler::getModuleName() const
{
    return parts[1];
}
QString SelectorUrlHandler::getObjectName() const
{
    return parts[2];
}
QString SelectorUrlHandler::getInstance() const
{
    return parts[3];
}
QString SelectorUrlHandler::getUrl() const
{
    return parts[4];
}
bool SelectorUrlHandler::isSelectorDeactivated() const
{
    return deactivated;
}

ErrorContainer::ErrorContainer()
    : number(0)
{
}
ErrorContainer::~ErrorContainer() = default;
ErrorContainer::ErrorContainer(const ErrorContainer &other) = default;
ErrorContainer &ErrorContainer::operator=(const ErrorContainer &other) = default;
QDebug operator<<(QDebug debug, const ErrorContainer &)
{
    return debug << "error";
}

DBusReply::DBusReply(const QVariant &value, const QString &error)
    : value(value)
    , error(error)
{
}
DBusReply::~DBusReply() = default;
bool DBusReply::isError() const
{
    return !error.isEmpty();
}
QString DBusReply::getErrorMessage() const
{
    return error;
}
QVariant DBusReply::getValue() const
{
    return value;
}

DBusPendingReply::DBusPendingReply() = default;
DBusPendingReply::~DBusPendingReply() = default;
QVariant DBusPendingReply::getReply()
{
    return {};
}

DBusConnectorBase::DBusConnectorBase() = default;
DBusConnectorBase::~DBusConnectorBase() = default;
bool DBusConnectorBase::isDBusInterfaceValid() const
{
    return BareDevice::isThere();
}
DBusProcessDescriptionConnector::DBusProcessDescriptionConnector(const QString &module,
                                                                 const QString &object)
    : module(module)
    , object(object)
{
}
DBusProcessDescriptionConnector::~DBusProcessDescriptionConnector() = default;
QSharedPointer<DBusProcessDescriptionConnector>
DBusProcessDescriptionConnector::createAndConnect(const QString &module, const QString &object)
{
    return QSharedPointer<DBusProcessDescriptionConnector>(
        BareDevice::isThere() ? new DBusProcessDescriptionConnector(module, object) : nullptr);
}
DBusReply DBusProcessDescriptionConnector::getProcessDataDescription(const QString &instance,
                                                                     const QString &) const
{
    const QJsonObject found = BareDevice::description(module, object, instance);
    if (found.isEmpty()) {
        return {{}, QStringLiteral("it has no such instance")};
    }
    return {QJsonDocument(found).toJson(), {}};
}
QSharedPointer<DBusPendingReply>
DBusProcessDescriptionConnector::getProcessDataDescriptionAsynchron(const QString &,
                                                                    const QString &) const
{
    return {};
}
SystemStatusManagerDBusConnector::SystemStatusManagerDBusConnector() = default;
SystemStatusManagerDBusConnector::~SystemStatusManagerDBusConnector() = default;
QSharedPointer<SystemStatusManagerDBusConnector>
SystemStatusManagerDBusConnector::createAndConnect()
{
    return QSharedPointer<SystemStatusManagerDBusConnector>(
        BareDevice::isThere() ? new SystemStatusManagerDBusConnector : nullptr);
}

bool readJsonValue(const QString &, const QJsonObject &, QJsonValue &)
{
    return false;
}
bool readJsonArrayFromJson(const QString &, const QJsonObject &, QJsonArray &)
{
    return false;
}
QJsonArray createJsonArrayFromJsonString(const QString &)
{
    return {};
}
