// SPDX-License-Identifier: MIT
// Leaves of many sources, as rows or as a tree, perhaps with their values.
#ifndef BROWSETREE_H
#define BROWSETREE_H

#include "Catalog.h"
#include "Finding.h"
#include "Report.h"

/// What browse shows of a pattern's leaves.
struct BrowseView
{
    bool tree = false; ///< modules, objects, instances and groups too, indented; else leaves alone
    bool values = false; ///< each leaf's current value
};

/// Parts of the system that gave no answer fail, each by itself; so does a pattern without a leaf.
///
/// Threads: one; blocks for calls.
Report browseReport(Catalog &catalog, const SelectorPattern &pattern, const BrowseView &view);

/// A place that cannot be shown.
Entry browseFailure(const QString &place, const Finding &finding, int columns);

#endif
