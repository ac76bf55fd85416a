// SPDX-License-Identifier: MIT
// The system information manager's object on the bus.
#include "ProviderRegistryObject.h"

#include "BusNames.h"

#include <QDBusConnection>
#include <QDBusError>

namespace {

const QLatin1String registerMember("RegisterProvider");
const QLatin1String unregisterMember("UnregisterProvider");
const QLatin1String listMember("GetRegisteredProviderList");

bool isSignatureRight(const QDBusMessage &message)
{
    if (message.member() == registerMember) {
        return message.signature() == QLatin1String("ss");
    }
    if (message.member() == unregisterMember) {
        return message.signature() == QLatin1String("s");
    }
    return message.signature().isEmpty();
}
}

// The same as dbus/com.orvalis.SystemInformationManager1.xml.
QString ProviderRegistryObject::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return QStringLiteral(R"(  <interface name="com.orvalis.SystemInformationManager1">
    <method name="RegisterProvider">
      <arg name="module" type="s" direction="in"/>
      <arg name="additionalData" type="s" direction="in"/>
    </method>
    <method name="UnregisterProvider">
      <arg name="module" type="s" direction="in"/>
    </method>
    <method name="GetRegisteredProviderList">
      <arg name="providers" type="s" direction="out"/>
    </method>
    <signal name="ProviderListChanged"/>
  </interface>
)");
}

bool ProviderRegistryObject::handleMessage(const QDBusMessage &message,
                                           const QDBusConnection &connection)
{
    const bool isOurs = message.interface() == BusNames::informationManagerInterface();
    const bool isKnown = message.member() == registerMember || message.member() == unregisterMember
        || message.member() == listMember;
    if (!isKnown && isOurs) {
        return connection.send(message.createErrorReply(
            QDBusError::UnknownMethod, QStringLiteral("No method %1").arg(message.member())));
    }
    if (!isOurs && !(isKnown && message.interface().isEmpty())) {
        return false; // QtDBus answers the standard interfaces, and refuses the others
    }
    return connection.send(answer(message));
}

QDBusMessage ProviderRegistryObject::answer(const QDBusMessage &message)
{
    if (!isSignatureRight(message)) {
        return message.createErrorReply(
            BusNames::invalidArgumentsError(),
            QStringLiteral("%1 does not take \"%2\"").arg(message.member(), message.signature()));
    }
    if (message.member() == listMember) {
        return message.createReply(providers.toJson());
    }
    const QVariantList arguments = message.arguments();
    QString error;
    const ProviderTable::Change change = message.member() == registerMember
        ? providers.add(arguments.at(0).toString(), arguments.at(1).toString(), message.service(),
                        error)
        : providers.remove(arguments.at(0).toString(), message.service(), error);
    if (change == ProviderTable::Change::Refused) {
        return message.createErrorReply(BusNames::invalidArgumentsError(), error);
    }
    if (change == ProviderTable::Change::Changed) {
        Q_EMIT listChanged();
    }
    return message.createReply();
}

void ProviderRegistryObject::handleOwnerChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (message.service() != BusNames::daemonService()
        || message.signature() != QLatin1String("sss") || !arguments.at(2).toString().isEmpty()) {
        return;
    }
    if (providers.removeOwner(arguments.at(0).toString()) == ProviderTable::Change::Changed) {
        Q_EMIT listChanged();
    }
}
