// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#include "ControlService.h"

#include "ControlNames.h"
#include "FaultRunner.h"
#include "ServiceEndpoint.h"
#include "com.orvalis.ProcessDataSimulator1.h"

#include <QDBusError>
#include <QJsonDocument>

namespace {

QString errorName(const char *kind)
{
    return QStringLiteral("com.orvalis.ProcessDataSimulator.Error.%1").arg(QLatin1String(kind));
}

} // namespace

ControlService::ControlService(const Scenario &scenario, FaultRunner &faults)
    : scenario(scenario)
    , faults(faults)
    , endpoint(std::make_unique<ServiceEndpoint>(BusChoice::fromEnvironment(),
                                                 ControlNames::service, ServiceEndpoint::documents))
{
}

ControlService::~ControlService() = default;

bool ControlService::start(QString &error)
{
    endpoint->exportObject(ControlNames::path, this);
    return endpoint->start(error);
}

QString ControlService::introspection() const
{
    return QString::fromLatin1(introspectionXml);
}

BusAnswer ControlService::answer(const ServedCall &call)
{
    if (call.interface() != ControlNames::interface && !call.interface().isEmpty()) {
        return BusAnswer();
    }
    const QString member = call.member();
    if (member == ControlNames::listSteps && call.signature().isEmpty()) {
        return BusAnswer::values({scenario.names()});
    }
    const bool isInline = member == ControlNames::runInline || member == ControlNames::checkInline;
    const bool isNamed = member == ControlNames::runStep || member == ControlNames::getStep;
    if ((!isInline && !isNamed) || call.signature() != QLatin1String("s")) {
        return BusAnswer::error(
            QDBusError::errorString(QDBusError::UnknownMethod),
            QStringLiteral("No method %1 with the signature \"%2\"").arg(member, call.signature()));
    }
    const QString argument = call.text(0);
    if (isInline) {
        return takeInline(member, argument);
    }
    const ScenarioStep *step = scenario.find(argument);
    if (step == nullptr) {
        return BusAnswer::error(errorName("UnknownStep"),
                                QStringLiteral("The scenario has no step \"%1\"").arg(argument));
    }
    return member == ControlNames::getStep
        ? BusAnswer::values({QJsonDocument(step->json).toJson(QJsonDocument::Compact)})
        : runStep(*step);
}

BusAnswer ControlService::takeInline(const QString &member, const QString &json) const
{
    ScenarioStep step;
    QString error;
    if (!parseScenarioStep(json.toUtf8(), step, error)) {
        return BusAnswer::error(errorName("InvalidStep"), error);
    }
    if (member == ControlNames::runInline) {
        return runStep(step);
    }
    return faults.check(step, error) ? BusAnswer::values({})
                                     : BusAnswer::error(errorName("InvalidStep"), error);
}

BusAnswer ControlService::runStep(const ScenarioStep &step) const
{
    QString error;
    return faults.run(step, error) ? BusAnswer::values({})
                                   : BusAnswer::error(errorName("StepFailed"), error);
}
