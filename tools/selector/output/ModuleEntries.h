// SPDX-License-Identifier: MIT
// Report entries of modules.
#ifndef MODULEENTRIES_H
#define MODULEENTRIES_H

#include "ModuleList.h"
#include "Report.h"

QVector<Column> moduleColumns();

/// With a row for each selector type. One without a name has failed.
Entry moduleEntry(const Module &module);

#endif
