// SPDX-License-Identifier: MIT
// All sources of one simulator, their clock and the system services.
#ifndef SIMULATOR_H
#define SIMULATOR_H

#include "FaultRunner.h"
#include "Scenario.h"
#include "SimulatorOptions.h"

#include <QObject>
#include <QSharedPointer>
#include <QTimer>

#include <memory>
#include <vector>

class ControlService;
class FileChanges;
class ProviderRegistryService;
class SimulatedSource;
class SystemStatusService;

/// Everything is published from start() on and retired when it is destroyed.
class Simulator : public QObject
{
    Q_OBJECT

public:
    explicit Simulator(SimulatorOptions options, QObject *parent = nullptr);
    ~Simulator() override;

    /// @param error  receives one sentence that names what is wrong; left alone on success
    /// @returns an exit code; ExitAllGood when everything is up
    int start(QString &error);

private:
    bool startServices(QString &error);
    bool readScenario(QString &error);
    int startFaults(QString &error);
    void checkScenario() const;
    void play(const ScenarioStep &step);
    void step();
    void reload();

    const SimulatorOptions options;
    QSharedPointer<ProviderRegistryService> registry;
    QSharedPointer<SystemStatusService> status;
    std::vector<std::unique_ptr<SimulatedSource>> sources;
    Scenario scenario;
    FaultRunner faults{sources};
    std::unique_ptr<ControlService> control;
    std::unique_ptr<FileChanges> fileChanges;
    QTimer timer;
};

#endif
