// SPDX-License-Identifier: MIT
// One object of a module on the bus: answers fetches of its instances' descriptions.
#include "ProcessDescriptionObject.h"

#include "BusNames.h"
#include "PreparedDescription.h"
#include "com.orvalis.ProcessDescription1.h"

#include <utility>

namespace {

const char fetchMember[] = "GetProcessDataDescription";
const char listMember[] = "ListInstances";
}

ProcessDescriptionObject::ProcessDescriptionObject(QString source, QObject *parent)
    : QObject(parent)
    , source(std::move(source))
{
}

void ProcessDescriptionObject::setDescription(const QString &instanceName, const QString &text)
{
    // The token now, while no client waits for it.
    descriptions.insert(instanceName, {text.toUtf8(), descriptionToken(text)});
}

void ProcessDescriptionObject::removeDescription(const QString &instanceName)
{
    descriptions.remove(instanceName);
}

QString ProcessDescriptionObject::introspection() const
{
    return QString::fromLatin1(introspectionXml);
}

BusAnswer ProcessDescriptionObject::answer(const ServedCall &call)
{
    if (call.isFor(BusNames::processDescriptionInterface(), fetchMember)) {
        return answerFetch(call);
    }
    if (call.isFor(BusNames::processDescriptionInterface(), listMember)) {
        return BusAnswer::values({instances()});
    }
    return BusAnswer();
}

qint64 ProcessDescriptionObject::answerSize(const ServedCall &call) const
{
    if (call.isFor(BusNames::processDescriptionInterface(), fetchMember)) {
        const auto description = descriptions.constFind(call.text(0));
        return description == descriptions.constEnd() || isKnownTo(call, *description)
            ? 0
            : description->text.size();
    }
    return 0;
}

BusAnswer ProcessDescriptionObject::describe(const ServedCall &call) const
{
    if (call.signature() != QLatin1String("ss")) {
        return BusAnswer::error(
            BusNames::invalidArgumentsError(),
            QStringLiteral("GetProcessDataDescription takes two strings, not \"%1\"")
                .arg(call.signature()));
    }
    const QString instanceName = call.text(0);
    const auto description = descriptions.constFind(instanceName);
    if (description == descriptions.constEnd()) {
        constexpr int longestName = 200;
        return BusAnswer::error(BusNames::unknownInstanceError(),
                                QStringLiteral("%1 has no instance \"%2\"")
                                    .arg(source, Wire::shortened(instanceName, longestName)));
    }
    return BusAnswer::values(
        {isKnownTo(call, *description) ? description->token.toUtf8() : description->text});
}

// A client that has the text already asks whether it still is the same.
bool ProcessDescriptionObject::isKnownTo(const ServedCall &call, const Description &description)
{
    return call.text(1) == description.token;
}
