// SPDX-License-Identifier: MIT
// Asks the system status manager whether the system has finished starting up.
#include "SystemReadyClient.h"

#include "BusNames.h"
#include "ServiceQuery.h"

#include <QDBusVariant>

BusQueryResult fetchSystemReady(bool &ready, QString &errorMessage)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::statusManagerService(), BusNames::statusManagerPath(),
        BusNames::propertiesInterface(), QStringLiteral("Get"));
    call.setArguments({BusNames::statusManagerInterface(), BusNames::readyProperty()});
    QVariant value;
    const BusQueryResult result = askService(call, "v", value, errorMessage);
    if (result != BusQueryResult::Ok) {
        return result;
    }
    value = value.value<QDBusVariant>().variant();
    if (value.type() != QVariant::Bool) {
        errorMessage = QStringLiteral("%1 does not say whether the system is ready")
                           .arg(BusNames::statusManagerService());
        return BusQueryResult::ServiceFailed;
    }
    ready = value.toBool();
    return result;
}
