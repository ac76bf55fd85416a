// SPDX-License-Identifier: MIT
// Everything that a person who fixes a fault wants to know, in one file.
#ifndef DOCTORREPORT_H
#define DOCTORREPORT_H

#include "DoctorFinding.h"
#include "SystemState.h"

#include <QJsonObject>

/// @param withValues  also current values; without, nothing in it says what the system measured
/// Threads: one; reads all values when they are wanted.
QJsonObject doctorReport(const SystemState &state, const QVector<DoctorFinding> &findings,
                         bool withValues);

#endif
