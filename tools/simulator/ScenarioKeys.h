// SPDX-License-Identifier: MIT
// The keys of one step and what they may hold.
#ifndef SCENARIOKEYS_H
#define SCENARIOKEYS_H

#include "Scenario.h"

/// Checks and takes over all keys of a step.
///
/// @param step   in: the name that it has unless it names itself
/// @param error  receives what is wrong, with the key
bool readScenarioStep(const QJsonObject &object, ScenarioStep &step, QString &error);

#endif
