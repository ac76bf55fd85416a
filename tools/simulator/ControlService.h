// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#ifndef CONTROLSERVICE_H
#define CONTROLSERVICE_H

#include "Scenario.h"

#include <QDBusVirtualObject>

#include <functional>
#include <memory>

class ServiceEndpoint;

/// The service com.orvalis.ProcessDataSimulator. A call is answered when its step was done.
///
/// Threads: the main thread.
class ControlService : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// Runs a step; on failure its second argument receives one sentence.
    using Run = std::function<bool(const ScenarioStep &, QString &)>;

    ControlService(const Scenario &scenario, Run run);
    ~ControlService() override;

    /// @param error  receives one sentence; left alone on success
    bool start(QString &error);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage answer(const QDBusMessage &message) const;
    QDBusMessage runStep(const QDBusMessage &message, const ScenarioStep &step) const;

    const Scenario &scenario;
    const Run run;
    std::unique_ptr<ServiceEndpoint> endpoint;
};

#endif
