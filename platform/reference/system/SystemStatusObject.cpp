// SPDX-License-Identifier: MIT
// The system status manager's object on the bus.
#include "SystemStatusObject.h"

#include "BusNames.h"
#include "com.orvalis.SystemStatusManager1.h"

#include <QDBusError>
#include <QDBusVariant>

QString SystemStatusObject::introspection() const
{
    return QString::fromLatin1(introspectionXml);
}

BusAnswer SystemStatusObject::answer(const ServedCall &call)
{
    if (call.interface() != BusNames::propertiesInterface()) {
        return BusAnswer();
    }
    const QString &property = BusNames::readyProperty();
    const QString member = call.member();
    const bool isOurs = call.text(0) == BusNames::statusManagerInterface();
    if (member == QLatin1String("Get") && call.signature() == QLatin1String("ss") && isOurs
        && call.text(1) == property) {
        return BusAnswer::values({QVariant::fromValue(QDBusVariant(ready))});
    }
    if (member == QLatin1String("GetAll") && call.signature() == QLatin1String("s") && isOurs) {
        return BusAnswer::values({QVariantMap{{property, ready}}});
    }
    if (member == QLatin1String("Set")) {
        return BusAnswer::error(QDBusError::errorString(QDBusError::PropertyReadOnly),
                                QStringLiteral("Ready cannot be set over the bus"));
    }
    return BusAnswer::error(
        BusNames::invalidArgumentsError(),
        QStringLiteral("The only property is Ready of %1").arg(BusNames::statusManagerInterface()));
}
