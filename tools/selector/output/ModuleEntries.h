// SPDX-License-Identifier: MIT
// Report entries of the modules in a list of registered providers.
#ifndef MODULEENTRIES_H
#define MODULEENTRIES_H

#include "Report.h"

#include <QString>

QVector<Column> moduleColumns();

/// All modules of the list with all their selectors.
///
/// @param providerList  JSON text as the registry gives it
QVector<Entry> moduleEntries(const QString &providerList);

/// Modules that offer selectors of a type, with these selectors.
QVector<Entry> moduleEntriesOfType(const QString &providerList, const QString &type);

#endif
