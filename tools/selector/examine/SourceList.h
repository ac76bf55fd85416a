// SPDX-License-Identifier: MIT
// The sources below a place.
#ifndef SOURCELIST_H
#define SOURCELIST_H

#include "BrowsePlace.h"
#include "Finding.h"
#include "SourceName.h"

#include <QVector>

struct ListedSource
{
    SourceName name;
    Finding finding; ///< why the names below it, and perhaps its own, are not known
};

/// All instances at or below a place, in the order of their names. What gives no answer has a
/// finding.
///
/// @param finding  why the list of modules cannot be had
/// Threads: any; blocks for D-Bus calls.
bool listSources(const BrowsePlace &place, QVector<ListedSource> &sources, Finding &finding);

#endif
