// SPDX-License-Identifier: MIT
// What the options of selector watch ask for.
#ifndef WATCHCHOICES_H
#define WATCHCHOICES_H

#include "CommandLine.h"
#include "Watcher.h"

/// @param usage  receives what does not go together or cannot be; left alone on success
bool takeWatchOptions(const CommandLine &line, WatchOptions &options, QString &usage);

#endif
