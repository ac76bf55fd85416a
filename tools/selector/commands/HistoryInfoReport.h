// SPDX-License-Identifier: MIT
// What a history holds: series, their spans and gaps, its size.
#ifndef HISTORYINFOREPORT_H
#define HISTORYINFOREPORT_H

#include "Console.h"
#include "HistoryReader.h"

/// @param database  as the user named it
/// @returns false when the database failed; the reader says why
bool printHistoryInfo(HistoryReader &reader, const QString &database, const Console &console);

#endif
