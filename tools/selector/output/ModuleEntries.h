// SPDX-License-Identifier: MIT
// Report entries of modules.
#ifndef MODULEENTRIES_H
#define MODULEENTRIES_H

#include "ModuleList.h"
#include "Report.h"

QVector<Column> moduleColumns();

/// One without a name has failed.
QVector<Entry> moduleEntries(const QVector<Module> &modules);

#endif
