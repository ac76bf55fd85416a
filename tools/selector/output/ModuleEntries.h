// SPDX-License-Identifier: MIT
// Report entries of modules.
#ifndef MODULEENTRIES_H
#define MODULEENTRIES_H

#include "Finding.h"
#include "ModuleList.h"
#include "Report.h"

QVector<Column> moduleColumns();

/// One that did not answer all questions about its sources.
Entry moduleFailure(const Module &module, const Finding &finding);

/// With a row for each selector type. One without a name has failed.
Entry moduleEntry(const Module &module);

#endif
