// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#include "ControlService.h"

#include "ServiceEndpoint.h"
#include "com.orvalis.ProcessDataSimulator1.h"

#include <QDBusError>
#include <QJsonDocument>

#include <utility>

namespace {

const QString serviceName = QStringLiteral("com.orvalis.ProcessDataSimulator");
const QString objectPath = QStringLiteral("/com/orvalis/ProcessDataSimulator");
const QString interfaceName = QStringLiteral("com.orvalis.ProcessDataSimulator1");

QString errorName(const char *kind)
{
    return QStringLiteral("com.orvalis.ProcessDataSimulator.Error.%1").arg(QLatin1String(kind));
}

} // namespace

ControlService::ControlService(const Scenario &scenario, Run run)
    : scenario(scenario)
    , run(std::move(run))
    , endpoint(std::make_unique<ServiceEndpoint>(BusChoice::fromEnvironment(), serviceName,
                                                 ServiceEndpoint::documents))
{
}

ControlService::~ControlService() = default;

bool ControlService::start(QString &error)
{
    endpoint->exportObject(objectPath, this);
    return endpoint->start(error);
}

QString ControlService::introspection() const
{
    return QString::fromLatin1(introspectionXml);
}

BusAnswer ControlService::answer(const ServedCall &call)
{
    if (call.interface() != interfaceName && !call.interface().isEmpty()) {
        return BusAnswer();
    }
    const QString member = call.member();
    if (member == QLatin1String("ListSteps") && call.signature().isEmpty()) {
        return BusAnswer::values({scenario.names()});
    }
    const bool known = member == QLatin1String("GetStep") || member == QLatin1String("RunStep")
        || member == QLatin1String("RunInline");
    if (!known || call.signature() != QLatin1String("s")) {
        return BusAnswer::error(
            QDBusError::errorString(QDBusError::UnknownMethod),
            QStringLiteral("No method %1 with the signature \"%2\"").arg(member, call.signature()));
    }
    const QString argument = call.text(0);
    if (member == QLatin1String("RunInline")) {
        ScenarioStep step;
        QString error;
        return parseScenarioStep(argument.toUtf8(), step, error)
            ? runStep(step)
            : BusAnswer::error(errorName("InvalidStep"), error);
    }
    const ScenarioStep *step = scenario.find(argument);
    if (step == nullptr) {
        return BusAnswer::error(errorName("UnknownStep"),
                                QStringLiteral("The scenario has no step \"%1\"").arg(argument));
    }
    return member == QLatin1String("GetStep")
        ? BusAnswer::values({QJsonDocument(step->json).toJson(QJsonDocument::Compact)})
        : runStep(*step);
}

BusAnswer ControlService::runStep(const ScenarioStep &step) const
{
    QString error;
    return run(step, error) ? BusAnswer::values({})
                            : BusAnswer::error(errorName("StepFailed"), error);
}
