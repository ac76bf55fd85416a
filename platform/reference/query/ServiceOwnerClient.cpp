// SPDX-License-Identifier: MIT
// Asks the bus who is there: services of modules, the system's services, and who runs them.
#include "ServiceOwnerClient.h"

#include "BusNames.h"
#include "ServiceQuery.h"

namespace {

BusQueryResult askDaemon(const char *member, const QVariantList &arguments, const char *type,
                         QVariant &value, QString &errorMessage)
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(BusNames::daemonService(), BusNames::daemonPath(),
                                         BusNames::daemonInterface(), QLatin1String(member));
    call.setArguments(arguments);
    return askService(call, type, value, errorMessage);
}
}

BusQueryResult fetchServiceOwner(const QString &moduleName, ServiceOwner &owner,
                                 QString &errorMessage)
{
    owner.service = BusNames::serviceOfModule(moduleName);
    QVariant value;
    const BusQueryResult result
        = askDaemon("GetNameOwner", {owner.service}, "s", value, errorMessage);
    if (result == BusQueryResult::ServiceMissing) {
        errorMessage = QStringLiteral("Nobody owns %1").arg(owner.service);
    }
    if (result != BusQueryResult::Ok) {
        return result;
    }
    owner.connection = value.toString();
    // A bus that does not tell the process is no reason to fail.
    QString ignored;
    if (askDaemon("GetConnectionUnixProcessID", {owner.connection}, "u", value, ignored)
        == BusQueryResult::Ok) {
        owner.processId = value.toUInt();
    }
    if (askDaemon("GetConnectionUnixUser", {owner.connection}, "u", value, ignored)
        == BusQueryResult::Ok) {
        owner.userId = value.toUInt();
    }
    return result;
}

BusQueryResult fetchServices(ServicesOnBus &services, QString &errorMessage)
{
    QVariant value;
    const BusQueryResult result = askDaemon("ListNames", {}, "as", value, errorMessage);
    if (result != BusQueryResult::Ok) {
        return result;
    }
    ServicesOnBus found;
    const QStringList names = value.toStringList();
    for (const QString &name : names) {
        if (const auto module = BusNames::moduleOfService(name)) {
            found.modules += *module;
        }
    }
    found.modules.sort();
    found.statusManager = names.contains(BusNames::statusManagerService());
    found.informationManager = names.contains(BusNames::informationManagerService());
    services = found;
    return result;
}
