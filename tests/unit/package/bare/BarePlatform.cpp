// SPDX-License-Identifier: MIT
// A platform that declares nothing beyond the contract and reaches nothing: only to be linked
// against.
#include "ConfigurationAndProcessDataDefinitions.h"
#include "ConfigurationAndProcessDataParser.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "JsonFunctions.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"
#include "PropertyManagerConst.h"
#include "SelectorUrlHandler.h"
#include "SystemInformationManagerRegistryDefinitions.h"
#include "SystemStatusManagerDBusConnector.h"

namespace {
const QString name = QStringLiteral("bare");
} // namespace

int ProcessValue::made = 0;
int ProcessValue::copied = 0;
ProcessValue::ProcessValue(ProcessDataDefinitions::ErrorTypes errorType)
    : errorType(errorType)
{
    ++made;
}
ProcessValue::~ProcessValue() = default;
ProcessValue::ProcessValue(const ProcessValue &other)
    : value(other.value)
    , errorType(other.errorType)
{
    ++copied;
}
ProcessValue &ProcessValue::operator=(const ProcessValue &other) = default;

ConfigurationAndProcessDataBase::ConfigurationAndProcessDataBase() = default;
ConfigurationAndProcessDataBase::~ConfigurationAndProcessDataBase() = default;
ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ConfigurationAndProcessDataBase::getLeafProcessDataValue(const QString &)
{
    return {};
}
QVariant ConfigurationAndProcessDataBase::readLeafProperty(const QString &)
{
    return {};
}
bool ConfigurationAndProcessDataBase::hasLeafProperty(const QString &)
{
    return false;
}

ProcessDataValue::ProcessDataValue() = default;
ProcessDataValue::~ProcessDataValue() = default;
bool ProcessDataValue::getValue(ProcessValue &, bool) const
{
    return false;
}
bool ProcessDataValue::setValue(const ProcessValue &)
{
    return false;
}

ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser() = default;
ConfigurationAndProcessDataParser::~ConfigurationAndProcessDataParser() = default;
bool ConfigurationAndProcessDataParser::frameToByteArray(
    const QSharedPointer<ConfigurationAndProcessDataBase> &, QByteArray &,
    QJsonDocument::JsonFormat) const
{
    return false;
}

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly()
{
    return name;
}
const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList()
{
    return name;
}
const QString &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
{
    return name;
}
const QString &SystemInformationManagerRegistryDefinitions::getKeyModuleName()
{
    return name;
}
const QString &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData()
{
    return name;
}
const QString &PropertyManagerConst::getProcessDataDescriptionFileExtension()
{
    return name;
}

SharedMemory::SharedMemory() = default;
SharedMemory::~SharedMemory() = default;
ProcessDataManager::ProcessDataManager() = default;
ProcessDataManager::~ProcessDataManager() = default;
QSharedPointer<ConfigurationAndProcessDataBase>
ProcessDataManager::createProcessDataFromJson(const QVariant &, const QString &,
                                              InitTypeSharedMemory)
{
    return {};
}
bool ProcessDataManager::isBufferValid() const
{
    return false;
}

SelectorUrlHandler::SelectorUrlHandler(const QString &)
{
}
SelectorUrlHandler::~SelectorUrlHandler() = default;
bool SelectorUrlHandler::isValid() const
{
    return false;
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
    return false;
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

DBusReply::DBusReply() = default;
DBusReply::~DBusReply() = default;
bool DBusReply::isError() const
{
    return true;
}
QString DBusReply::getErrorMessage() const
{
    return name;
}
QVariant DBusReply::getValue() const
{
    return {};
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
    return false;
}
DBusProcessDescriptionConnector::DBusProcessDescriptionConnector() = default;
DBusProcessDescriptionConnector::~DBusProcessDescriptionConnector() = default;
QSharedPointer<DBusProcessDescriptionConnector>
DBusProcessDescriptionConnector::createAndConnect(const QString &, const QString &)
{
    return {};
}
DBusReply DBusProcessDescriptionConnector::getProcessDataDescription(const QString &,
                                                                     const QString &) const
{
    return {};
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
    return {};
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
