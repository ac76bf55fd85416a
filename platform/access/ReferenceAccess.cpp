// SPDX-License-Identifier: MIT
// The reference platform's body of what tools need beyond the contract.
#include "CallDeadline.h"
#include "InstanceListClient.h"
#include "ProcessDataAccess.h"
#include "ProviderListClient.h"
#include "ReferenceResult.h"
#include "ServiceOwnerClient.h"
#include "SystemChanges.h"

namespace ProcessDataAccess {

namespace {

SystemEvent eventOf(const SystemChange &change)
{
    switch (change.kind) {
    case SystemChange::ServiceAppeared:
        return {SystemEvent::ServiceAppeared, change.module};
    case SystemChange::ServiceLost:
        return {SystemEvent::ServiceLost, change.module};
    case SystemChange::ProvidersChanged:
        return {SystemEvent::ProvidersChanged, {}};
    case SystemChange::BusLost:
        return {SystemEvent::BusLost, {}};
    case SystemChange::BusFound:
        break;
    }
    return {SystemEvent::BusFound, {}};
}

class ReferenceWatch : public SystemWatch
{
public:
    explicit ReferenceWatch(std::unique_ptr<SystemChanges> changes)
        : changes(std::move(changes))
    {
    }

private:
    const std::unique_ptr<SystemChanges> changes;
};

} // namespace

QVariant valueOf(const ProcessValue &value)
{
    return value.getValue();
}

ErrorType errorTypeOf(const ProcessValue &value)
{
    switch (value.getErrorType()) {
    case ProcessDataDefinitions::NoError:
        return ErrorType::NoError;
    case ProcessDataDefinitions::NotInitialized:
        return ErrorType::NotInitialized;
    case ProcessDataDefinitions::SourceLost:
        return ErrorType::SourceLost;
    case ProcessDataDefinitions::NoValue:
        return ErrorType::NoValue;
    case ProcessDataDefinitions::DeviceFault:
        return ErrorType::DeviceFault;
    case ProcessDataDefinitions::OutOfRange:
        return ErrorType::OutOfRange;
    }
    return ErrorType::NoValue;
}

qint64 timestampOf(const ProcessValue &value)
{
    return value.getTimestamp();
}

ProcessValue makeValue(const QVariant &value)
{
    return ProcessValue(value);
}

Result fetchProviderList(QString &json, QString &errorMessage)
{
    return resultOf(fetchRegisteredProviderList(json, errorMessage));
}

Result fetchRunningModules(QStringList &modules, QString &errorMessage)
{
    ServicesOnBus services;
    const Result result = resultOf(fetchServices(services, errorMessage));
    if (result == Result::Ok) {
        modules = services.modules;
    }
    return result;
}

Result fetchObjects(const QString &module, QStringList &objects, QString &errorMessage)
{
    return resultOf(::fetchObjects(module, objects, errorMessage));
}

Result fetchInstances(const QString &module, const QString &object, QStringList &instances,
                      QString &errorMessage)
{
    return resultOf(::fetchInstances(module, object, instances, errorMessage));
}

Result fetchDescription(const QString &module, const QString &object, const QString &instance,
                        QString &description, QString &errorMessage)
{
    return resultOf(::fetchDescription(module, object, instance, description, errorMessage));
}

Result isServed(const QString &module, QString &errorMessage)
{
    ServiceOwner owner;
    return resultOf(fetchServiceOwner(module, owner, errorMessage));
}

void setCallDeadline(int milliseconds)
{
    ::setCallDeadline(milliseconds);
}

void setCallTimeLimit(int milliseconds)
{
    ::setCallTimeLimit(milliseconds);
}

std::unique_ptr<SystemWatch> watchSystem(const std::function<void(const SystemEvent &)> &hear)
{
    QString ignored; // whoever asks next is told that the bus is out of reach
    auto changes = SystemChanges::watch(
        [hear](const SystemChange &change) { hear(eventOf(change)); }, ignored);
    return changes ? std::make_unique<ReferenceWatch>(std::move(changes)) : nullptr;
}

} // namespace ProcessDataAccess
