// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#include "ControlService.h"

#include "ServiceEndpoint.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
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
    , endpoint(std::make_unique<ServiceEndpoint>(BusChoice::fromEnvironment(), serviceName))
{
}

ControlService::~ControlService() = default;

bool ControlService::start(QString &error)
{
    endpoint->exportObject(objectPath, this);
    return endpoint->start(error);
}

// The same as com.orvalis.ProcessDataSimulator1.xml.
QString ControlService::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return QStringLiteral(R"(  <interface name="com.orvalis.ProcessDataSimulator1">
    <method name="ListSteps">
      <arg name="names" type="as" direction="out"/>
    </method>
    <method name="GetStep">
      <arg name="name" type="s" direction="in"/>
      <arg name="json" type="s" direction="out"/>
    </method>
    <method name="RunStep">
      <arg name="name" type="s" direction="in"/>
    </method>
    <method name="RunInline">
      <arg name="json" type="s" direction="in"/>
    </method>
  </interface>
)");
}

bool ControlService::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.interface() != interfaceName && !message.interface().isEmpty()) {
        return false;
    }
    return connection.send(answer(message));
}

QDBusMessage ControlService::answer(const QDBusMessage &message) const
{
    const QString member = message.member();
    if (member == QLatin1String("ListSteps") && message.signature().isEmpty()) {
        return message.createReply(QVariant(scenario.names()));
    }
    const bool known = member == QLatin1String("GetStep") || member == QLatin1String("RunStep")
        || member == QLatin1String("RunInline");
    if (!known || message.signature() != QLatin1String("s")) {
        return message.createErrorReply(QDBusError::UnknownMethod,
                                        QStringLiteral("No method %1 with the signature \"%2\"")
                                            .arg(member, message.signature()));
    }
    const QString argument = message.arguments().value(0).toString();
    if (member == QLatin1String("RunInline")) {
        ScenarioStep step;
        QString error;
        return parseScenarioStep(argument.toUtf8(), step, error)
            ? runStep(message, step)
            : message.createErrorReply(errorName("InvalidStep"), error);
    }
    const ScenarioStep *step = scenario.find(argument);
    if (step == nullptr) {
        return message.createErrorReply(
            errorName("UnknownStep"),
            QStringLiteral("The scenario has no step \"%1\"").arg(argument));
    }
    return member == QLatin1String("GetStep") ? message.createReply(QVariant(
               QString::fromUtf8(QJsonDocument(step->json).toJson(QJsonDocument::Compact))))
                                              : runStep(message, *step);
}

QDBusMessage ControlService::runStep(const QDBusMessage &message, const ScenarioStep &step) const
{
    QString error;
    return run(step, error) ? message.createReply()
                            : message.createErrorReply(errorName("StepFailed"), error);
}
