// SPDX-License-Identifier: MIT
// Lets others run the steps of a scenario over D-Bus.
#ifndef CONTROLSERVICE_H
#define CONTROLSERVICE_H

#include "Scenario.h"
#include "ServedCall.h"

#include <memory>

class FaultRunner;
class ServiceEndpoint;

/// The service com.orvalis.ProcessDataSimulator. A call is answered when its step was done.
///
/// Threads: the main thread.
class ControlService : public ServedObject
{
public:
    ControlService(const Scenario &scenario, FaultRunner &faults);
    ~ControlService() override;

    /// @param error  receives one sentence; left alone on success
    bool start(QString &error);

    QString introspection() const override;
    BusAnswer answer(const ServedCall &call) override;

private:
    BusAnswer runStep(const ScenarioStep &step) const;
    BusAnswer takeInline(const QString &member, const QString &json) const;

    const Scenario &scenario;
    FaultRunner &faults;
    std::unique_ptr<ServiceEndpoint> endpoint;
};

#endif
