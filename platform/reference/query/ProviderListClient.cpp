// SPDX-License-Identifier: MIT
// Asks the system information manager for the registered providers.
#include "ProviderListClient.h"

#include "BusNames.h"
#include "ServiceQuery.h"

BusQueryResult fetchRegisteredProviderList(QString &json, QString &errorMessage)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::informationManagerService(), BusNames::informationManagerPath(),
        BusNames::informationManagerInterface(), QStringLiteral("GetRegisteredProviderList"));
    QVariant list;
    const BusQueryResult result = askService(call, "s", list, errorMessage);
    if (result == BusQueryResult::Ok) {
        json = list.toString();
    }
    return result;
}
