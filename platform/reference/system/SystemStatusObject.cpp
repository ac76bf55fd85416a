// SPDX-License-Identifier: MIT
// The system status manager's object on the bus.
#include "SystemStatusObject.h"

#include "BusNames.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>

// The same as dbus/com.orvalis.SystemStatusManager1.xml.
QString SystemStatusObject::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return QStringLiteral(R"(  <interface name="com.orvalis.SystemStatusManager1">
    <property name="Ready" type="b" access="read"/>
    <signal name="StartupReady"/>
  </interface>
)");
}

bool SystemStatusObject::handleMessage(const QDBusMessage &message,
                                       const QDBusConnection &connection)
{
    if (message.interface() != BusNames::propertiesInterface()) {
        return false;
    }
    return connection.send(answerProperties(message));
}

QDBusMessage SystemStatusObject::answerProperties(const QDBusMessage &message) const
{
    const QString &property = BusNames::readyProperty();
    const QVariantList arguments = message.arguments();
    const bool isOurs = arguments.value(0).toString() == BusNames::statusManagerInterface();
    if (message.member() == QLatin1String("Get") && message.signature() == QLatin1String("ss")
        && isOurs && arguments.at(1).toString() == property) {
        return message.createReply(QVariant::fromValue(QDBusVariant(ready)));
    }
    if (message.member() == QLatin1String("GetAll") && message.signature() == QLatin1String("s")
        && isOurs) {
        return message.createReply(QVariantMap{{property, ready}});
    }
    if (message.member() == QLatin1String("Set")) {
        return message.createErrorReply(QDBusError::PropertyReadOnly,
                                        QStringLiteral("Ready cannot be set over the bus"));
    }
    return message.createErrorReply(
        BusNames::invalidArgumentsError(),
        QStringLiteral("The only property is Ready of %1").arg(BusNames::statusManagerInterface()));
}
