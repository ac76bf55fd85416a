// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#ifndef CONTROLSERVICE_H
#define CONTROLSERVICE_H

#include "Scenario.h"
#include "ServedCall.h"

#include <functional>
#include <memory>

class ServiceEndpoint;

/// The service com.orvalis.ProcessDataSimulator. A call is answered when its step was done.
///
/// Threads: the main thread.
class ControlService : public ServedObject
{
public:
    /// Runs a step; on failure its second argument receives one sentence.
    using Run = std::function<bool(const ScenarioStep &, QString &)>;

    ControlService(const Scenario &scenario, Run run);
    ~ControlService() override;

    /// @param error  receives one sentence; left alone on success
    bool start(QString &error);

    QString introspection() const override;
    BusAnswer answer(const ServedCall &call) override;

private:
    BusAnswer runStep(const ScenarioStep &step) const;

    const Scenario &scenario;
    const Run run;
    std::unique_ptr<ServiceEndpoint> endpoint;
};

#endif
