// SPDX-License-Identifier: MIT
// What tools need of this platform beyond the contract. It cannot list what it has: who uses it
// brings lists of selectors.
#include "BareDevice.h"
#include "ProcessDataAccess.h"

#include <QJsonDocument>

namespace ProcessDataAccess {

namespace {

constexpr qint64 nanosecondsPerMicrosecond = 1000;

Result notListed(const char *what, QString &errorMessage)
{
    errorMessage = QStringLiteral("this platform has no list of %1").arg(QLatin1String(what));
    return Result::NotSupported;
}

} // namespace

QVariant valueOf(const ProcessValue &value)
{
    return value.content();
}

ErrorType errorTypeOf(const ProcessValue &value)
{
    switch (value.state()) {
    case ProcessDataDefinitions::ErrorTypes::Fine:
        return ErrorType::NoError;
    case ProcessDataDefinitions::ErrorTypes::Stale:
        return ErrorType::SourceLost;
    case ProcessDataDefinitions::ErrorTypes::Faulty:
        return ErrorType::DeviceFault;
    case ProcessDataDefinitions::ErrorTypes::Unobtained:
        break;
    }
    return ErrorType::NoValue;
}

qint64 timestampOf(const ProcessValue &value)
{
    return value.since() * nanosecondsPerMicrosecond;
}

ProcessValue makeValue(const QVariant &value)
{
    return {value, ProcessDataDefinitions::ErrorTypes::Fine, 0};
}

Result fetchProviderList(QString & /*json*/, QString &errorMessage)
{
    return notListed("registered modules", errorMessage);
}

Result fetchRunningModules(QStringList & /*modules*/, QString &errorMessage)
{
    return notListed("running modules", errorMessage);
}

Result fetchObjects(const QString & /*module*/, QStringList & /*objects*/, QString &errorMessage)
{
    return notListed("objects", errorMessage);
}

Result fetchInstances(const QString & /*module*/, const QString & /*object*/,
                      QStringList & /*instances*/, QString &errorMessage)
{
    return notListed("instances", errorMessage);
}

Result fetchDescription(const QString &module, const QString &object, const QString &instance,
                        QString &description, QString &errorMessage)
{
    const QJsonObject found = BareDevice::description(module, object, instance);
    if (found.isEmpty()) {
        errorMessage = QStringLiteral("module %1 describes no %2/%3").arg(module, object, instance);
        return Result::ServiceFailed;
    }
    description = QString::fromUtf8(QJsonDocument(found).toJson());
    return Result::Ok;
}

Result isServed(const QString &module, QString &errorMessage)
{
    if (BareDevice::serves(module)) {
        return Result::Ok;
    }
    errorMessage = QStringLiteral("nobody serves module %1").arg(module);
    return Result::ServiceMissing;
}

void setCallDeadline(int /*milliseconds*/)
{
}

void setCallTimeLimit(int /*milliseconds*/)
{
}

std::unique_ptr<SystemWatch> watchSystem(const std::function<void(const SystemEvent &)> & /*hear*/)
{
    return nullptr;
}

} // namespace ProcessDataAccess
