// SPDX-License-Identifier: MIT
// The system information manager's object on the bus.
#include "ProviderRegistryObject.h"

#include "BusNames.h"
#include "com.orvalis.SystemInformationManager1.h"

namespace {

const char registerMember[] = "RegisterProvider";
const char unregisterMember[] = "UnregisterProvider";
const char listMember[] = "GetRegisteredProviderList";

BusAnswer wrongSignature(const ServedCall &call)
{
    return BusAnswer::error(
        BusNames::invalidArgumentsError(),
        QStringLiteral("%1 does not take \"%2\"").arg(call.member(), call.signature()));
}
}

QString ProviderRegistryObject::introspection() const
{
    return QString::fromLatin1(introspectionXml);
}

BusAnswer ProviderRegistryObject::answer(const ServedCall &call)
{
    const QString &interface = BusNames::informationManagerInterface();
    if (call.isFor(interface, registerMember)) {
        return call.signature() == QLatin1String("ss") ? change(call, true) : wrongSignature(call);
    }
    if (call.isFor(interface, unregisterMember)) {
        return call.signature() == QLatin1String("s") ? change(call, false) : wrongSignature(call);
    }
    if (call.isFor(interface, listMember)) {
        return call.signature().isEmpty() ? list() : wrongSignature(call);
    }
    return BusAnswer();
}

qint64 ProviderRegistryObject::answerSize(const ServedCall &call) const
{
    return call.isFor(BusNames::informationManagerInterface(), listMember)
        ? Wire::size(list().content)
        : 0;
}

BusAnswer ProviderRegistryObject::list() const
{
    return BusAnswer::values({providers.toJson()});
}

BusAnswer ProviderRegistryObject::change(const ServedCall &call, bool add)
{
    QString error;
    const ProviderTable::Change change = add
        ? providers.add(call.text(0), call.text(1), call.sender(), error)
        : providers.remove(call.text(0), call.sender(), error);
    if (change == ProviderTable::Change::Refused) {
        return BusAnswer::error(BusNames::invalidArgumentsError(), error);
    }
    if (change == ProviderTable::Change::Changed) {
        Q_EMIT listChanged();
    }
    return BusAnswer::values({});
}

void ProviderRegistryObject::handleOwnerChanged(const QString &name, const QString &owner)
{
    if (owner.isEmpty() && providers.removeOwner(name) == ProviderTable::Change::Changed) {
        Q_EMIT listChanged();
    }
}
