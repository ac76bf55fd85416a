// SPDX-License-Identifier: MIT
// Keeps a module registered at the system information manager.
#include "ProviderRegistration.h"

#include "BusErrors.h"
#include "BusNames.h"
#include "BusSettings.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "PublisherLog.h"
#include "ServiceEndpoint.h"
#include "ServingConnection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace {

WireMessage registryCall(const QString &member, const QVariantList &values)
{
    return Wire::call(BusNames::informationManagerService(), BusNames::informationManagerPath(),
                      BusNames::informationManagerInterface(), member, values);
}

// A registry that is not there yet is heard of when it comes; a call that was lost with the bus is
// made again.
bool isOfNoConcern(BusErrors::Kind error)
{
    return error == BusErrors::Kind::ServiceMissing || error == BusErrors::Kind::Disconnected;
}
}

ProviderRegistration::ProviderRegistration(QString moduleName, QObject *parent)
    : QObject(parent)
    , moduleName(std::move(moduleName))
    , timer(this)
{
    timer.setSingleShot(true);
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, this, &ProviderRegistration::sendRegistration);
}

void ProviderRegistration::setEndpoint(ServiceEndpoint &endpoint)
{
    connection = endpoint.connection();
    connection->watchOwners(BusNames::informationManagerService(), this,
                            [this](const QString & /*name*/, const QString &owner) {
                                if (!owner.isEmpty() && connection != nullptr) {
                                    timer.start();
                                }
                            });
    timer.start();
}

void ProviderRegistration::clearConnection()
{
    timer.stop();
    connection.reset();
}

void ProviderRegistration::setSelectorTypes(const QStringList &entries)
{
    selectorTypes = entries;
    hasData = true;
    timer.start();
}

void ProviderRegistration::unregister()
{
    timer.stop();
    if (connection != nullptr) {
        // A registry that is not there has nothing to forget.
        connection->call(registryCall(QStringLiteral("UnregisterProvider"), {moduleName}),
                         callTimeLimit(), this, [](const WireMessage & /*answer*/) {});
    }
}

void ProviderRegistration::sendRegistration()
{
    if (!hasData || connection == nullptr) {
        return;
    }
    const WireMessage call
        = registryCall(QStringLiteral("RegisterProvider"), {moduleName, additionalData()});
    connection->call(call, callTimeLimit(), this, [this](const WireMessage &answer) {
        if (!Wire::isReturn(answer) && !isOfNoConcern(BusErrors::kindOf(Wire::errorName(answer)))) {
            qCWarning(publisherLog).noquote()
                << "Module" << moduleName << "is not registered at"
                << BusNames::informationManagerService() << "-" << BusErrors::text(answer);
        }
    });
}

QString ProviderRegistration::additionalData() const
{
    const QJsonObject data{
        {ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList(),
         QJsonArray::fromStringList(selectorTypes)}};
    return QString::fromUtf8(QJsonDocument(data).toJson(QJsonDocument::Compact));
}
