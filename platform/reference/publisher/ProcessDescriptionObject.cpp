// SPDX-License-Identifier: MIT
// One object of a module on the bus: answers fetches of its instances' descriptions.
#include "ProcessDescriptionObject.h"

#include "BusNames.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <utility>

ProcessDescriptionObject::ProcessDescriptionObject(QString source, QObject *parent)
    : QDBusVirtualObject(parent)
    , source(std::move(source))
{
}

void ProcessDescriptionObject::setDescription(const QString &instanceName, const QString &text)
{
    descriptions.insert(instanceName, text);
}

void ProcessDescriptionObject::removeDescription(const QString &instanceName)
{
    descriptions.remove(instanceName);
}

bool ProcessDescriptionObject::hasDescription(const QString &instanceName) const
{
    return descriptions.contains(instanceName);
}

// The same as dbus/com.orvalis.ProcessDescription1.xml.
QString ProcessDescriptionObject::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return QStringLiteral(R"(  <interface name="com.orvalis.ProcessDescription1">
    <method name="GetProcessDataDescription">
      <arg name="instance" type="s" direction="in"/>
      <arg name="reserved" type="s" direction="in"/>
      <arg name="description" type="s" direction="out"/>
    </method>
    <method name="ListInstances">
      <arg name="instances" type="as" direction="out"/>
    </method>
    <signal name="ProcessDataDescriptionChanged">
      <arg name="instance" type="s"/>
    </signal>
    <signal name="PropertyChanged">
      <arg name="instance" type="s"/>
    </signal>
  </interface>
)");
}

bool ProcessDescriptionObject::handleMessage(const QDBusMessage &message,
                                             const QDBusConnection &connection)
{
    const bool isOurs = message.interface() == BusNames::processDescriptionInterface();
    if (!isOurs && !message.interface().isEmpty()) {
        return false; // QtDBus answers the standard interfaces, and refuses the others
    }
    if (message.member() == QLatin1String("GetProcessDataDescription")) {
        return sendAnswer(message, connection);
    }
    if (message.member() == QLatin1String("ListInstances")) {
        return connection.send(message.createReply(QVariant(instances())));
    }
    return isOurs
        && connection.send(message.createErrorReply(
            QDBusError::UnknownMethod, QStringLiteral("No method %1").arg(message.member())));
}

QDBusMessage ProcessDescriptionObject::answerFetch(const QDBusMessage &message) const
{
    if (message.signature() != QLatin1String("ss")) {
        return message.createErrorReply(
            BusNames::invalidArgumentsError(),
            QStringLiteral("GetProcessDataDescription takes two strings, not \"%1\"")
                .arg(message.signature()));
    }
    const QString instanceName = message.arguments().at(0).toString();
    const auto description = descriptions.find(instanceName);
    if (description == descriptions.end()) {
        return message.createErrorReply(
            BusNames::unknownInstanceError(),
            QStringLiteral("%1 has no instance \"%2\"").arg(source, instanceName));
    }
    return message.createReply(QVariant(*description));
}
