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
    QDBusMessage answer;
    const BusQueryResult result = queryService(call, QStringLiteral("s"), answer, errorMessage);
    if (result == BusQueryResult::Ok) {
        json = answer.arguments().at(0).toString();
    }
    return result;
}
