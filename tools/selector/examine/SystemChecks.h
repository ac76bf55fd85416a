// SPDX-License-Identifier: MIT
// Compares what the parts of a system say of each other.
#ifndef SYSTEMCHECKS_H
#define SYSTEMCHECKS_H

#include "DoctorFinding.h"
#include "SystemState.h"

/// Everything that is wrong, in the order of the checks; a check that finds nothing wrong has one
/// good finding that says what was looked at.
QVector<DoctorFinding> checkSystem(const SystemState &state);

#endif
