// SPDX-License-Identifier: MIT
// Makes the faults of a scenario happen.
#ifndef FAULTRUNNER_H
#define FAULTRUNNER_H

#include "Scenario.h"

#include <memory>
#include <vector>

class SimulatedSource;

/// Threads: the main thread.
class FaultRunner
{
public:
    using Sources = std::vector<std::unique_ptr<SimulatedSource>>;

    explicit FaultRunner(const Sources &sources)
        : sources(sources)
    {
    }

    /// Runs one step; it has taken effect when this returns.
    ///
    /// @param error  receives one sentence that names the step; left alone on success
    bool run(const ScenarioStep &step, QString &error);

    /// Whether what the step names is there: its module, or its source and leaf. What has vanished
    /// counts as there.
    ///
    /// @param error  receives one sentence that names the key; left alone on success
    bool check(const ScenarioStep &step, QString &error) const;

private:
    bool make(const ScenarioStep &step, QString &error);
    bool runOnModule(const ScenarioStep &step, QString &error);
    bool runOnSource(const ScenarioStep &step, SimulatedSource &source, QString &error);
    SimulatedSource *find(const QString &source) const;

    const Sources &sources;
};

#endif
