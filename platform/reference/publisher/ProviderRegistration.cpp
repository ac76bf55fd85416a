// SPDX-License-Identifier: MIT
// Keeps a module registered at the system information manager.
#include "ProviderRegistration.h"

#include "BusCall.h"
#include "BusErrors.h"
#include "BusNames.h"
#include "BusSettings.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "PublisherLog.h"
#include "ServiceEndpoint.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace {

QDBusMessage registryCall(const QString &member)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::informationManagerService(), BusNames::informationManagerPath(),
        BusNames::informationManagerInterface(), member);
    call.setAutoStartService(false);
    return call;
}
}

ProviderRegistration::ProviderRegistration(QString moduleName, QObject *parent)
    : QObject(parent)
    , moduleName(std::move(moduleName))
    , connection(QString())
    , timer(this)
{
    timer.setSingleShot(true);
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, this, &ProviderRegistration::sendRegistration);
}

void ProviderRegistration::setEndpoint(ServiceEndpoint &endpoint)
{
    connection = endpoint.connection();
    endpoint.subscribe({BusNames::daemonPath(),
                        BusNames::daemonInterface(),
                        QStringLiteral("NameOwnerChanged"),
                        {BusNames::informationManagerService()}},
                       this, SLOT(handleRegistryOwner(QDBusMessage)));
    timer.start();
}

void ProviderRegistration::clearConnection()
{
    timer.stop();
    connection = QDBusConnection(QString());
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
    if (connection.isConnected()) {
        QDBusMessage call = registryCall(QStringLiteral("UnregisterProvider"));
        call << moduleName;
        connection.send(call); // a registry that is not there has nothing to forget
    }
}

void ProviderRegistration::handleRegistryOwner(const QDBusMessage &message)
{
    const bool hasOwner = !message.arguments().value(2).toString().isEmpty();
    if (message.service() == BusNames::daemonService() && hasOwner) {
        timer.start();
    }
}

void ProviderRegistration::sendRegistration()
{
    if (!hasData || !connection.isConnected()) {
        return;
    }
    QDBusMessage call = registryCall(QStringLiteral("RegisterProvider"));
    call << moduleName << additionalData();
    BusCall::send(connection, call, callTimeLimit(), this, [this](const QDBusMessage &answer) {
        // A registry that is not there yet is heard of when it comes.
        if (answer.type() == QDBusMessage::ErrorMessage && !BusErrors::isServiceMissing(answer)
            && !BusErrors::isDisconnected(answer)) {
            qCWarning(publisherLog).noquote()
                << "Module" << moduleName << "is not registered at"
                << BusNames::informationManagerService() << "-" << answer.errorMessage();
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
