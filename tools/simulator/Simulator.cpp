// SPDX-License-Identifier: MIT
// Start and life of a simulator.
#include "Simulator.h"

#include "ControlService.h"
#include "DescriptionFile.h"
#include "ExitCode.h"
#include "FileChanges.h"
#include "ProviderRegistryService.h"
#include "SimulatedSource.h"
#include "SimulatorLog.h"
#include "SystemStatusManagerDBusConnector.h"
#include "SystemStatusService.h"

#include <utility>

Simulator::Simulator(SimulatorOptions options, QObject *parent)
    : QObject(parent)
    , options(std::move(options))
{
}

Simulator::~Simulator() = default;

int Simulator::start(QString &error)
{
    if (!options.scenario.isEmpty() && !readScenario(error)) {
        return ExitSomeFailed;
    }
    if (SystemStatusManagerDBusConnector::createAndConnect().isNull()) {
        error = QStringLiteral("the bus is out of reach (PROCESSDATA_BUS chooses which one)");
        return ExitNotReachable;
    }
    // The registry first: publishers register with it while they start.
    if (options.systemServices && !startServices(error)) {
        return ExitNotReachable;
    }
    for (const QString &fileName : options.fileNames) {
        auto source = SimulatedSource::create(fileName, error);
        if (!source) {
            return ExitSomeFailed;
        }
        sources.push_back(std::move(source));
    }
    fileChanges = std::make_unique<FileChanges>(options.fileNames);
    connect(fileChanges.get(), &FileChanges::changed, this, &Simulator::reload);
    connect(&timer, &QTimer::timeout, this, &Simulator::step);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(options.interval);
    if (status) {
        status->setReady(true);
    }
    return options.control ? startFaults(error) : int(ExitAllGood);
}

bool Simulator::readScenario(QString &error)
{
    QByteArray content;
    return readFile(options.scenario, content, error)
        && parseScenario(options.scenario, content, scenario, error);
}

int Simulator::startFaults(QString &error)
{
    checkScenario();
    control = std::make_unique<ControlService>(scenario, faults);
    if (!control->start(error)) {
        return ExitNotReachable;
    }
    for (const ScenarioStep &timed : qAsConst(scenario.steps)) {
        if (timed.at >= 0) {
            QTimer::singleShot(timed.at, this, [this, timed] { play(timed); });
        }
    }
    return ExitAllGood;
}

// Not refused: a leaf may come with a change of its file.
void Simulator::checkScenario() const
{
    for (const ScenarioStep &step : scenario.steps) {
        QString problem;
        if (!faults.check(step, problem)) {
            qCWarning(simulator).noquote() << QStringLiteral("%1: step %2 would fail: %3")
                                                  .arg(options.scenario, step.name, problem);
        }
    }
}

void Simulator::play(const ScenarioStep &step)
{
    QString error;
    if (!faults.run(step, error)) {
        qCWarning(simulator).noquote() << error;
    }
}

bool Simulator::startServices(QString &error)
{
    registry = ProviderRegistryService::create(&error);
    if (registry) {
        status = SystemStatusService::create(&error);
    }
    return registry && status;
}

void Simulator::step()
{
    for (const auto &source : sources) {
        source->step();
    }
}

void Simulator::reload()
{
    for (const auto &source : sources) {
        source->reload();
    }
}
