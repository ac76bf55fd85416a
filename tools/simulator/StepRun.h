// SPDX-License-Identifier: MIT
// Has a running simulator perform steps, one after the other.
#ifndef STEPRUN_H
#define STEPRUN_H

#include "StepText.h"

#include <functional>

/// Performs steps in a simulator on the bus that the environment chooses, if it knows all that they
/// name; ends at the first that fails.
///
/// @param print  takes a line for each step, which says what happened
/// @param error  receives one sentence when no step was begun; left alone otherwise
/// @returns an exit code
int runSteps(const QVector<TypedStep> &steps, const std::function<void(const QString &)> &print,
             QString &error);

#endif
