// SPDX-License-Identifier: MIT
// Options whose value is a time with its unit.
#ifndef DURATIONOPTION_H
#define DURATIONOPTION_H

#include "CommandLine.h"

/// Reads the value of an option of kind Name.
///
/// @param longest      in nanoseconds
/// @param nanoseconds  left alone without the option
/// @param error        receives one sentence on failure
bool readDuration(const CommandLine &line, const char *option, qint64 longest, qint64 &nanoseconds,
                  QString &error);

#endif
