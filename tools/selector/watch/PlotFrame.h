// SPDX-License-Identifier: MIT
// Charts one below the other.
#ifndef PLOTFRAME_H
#define PLOTFRAME_H

#include "PlotPanel.h"
#include "WatchTargets.h"

/// Titles of the charts, one for each target and all different: the target's name; where several
/// have that name, the one part of their URLs that tells all of them apart, or as much of the ends of
/// their URLs as it takes; for one selector twice a number.
QStringList plotTitles(const QVector<WatchTarget> &targets);

/// Where charts are drawn.
struct PlotArea
{
    int width = 80; ///< columns
    int lines = 0; ///< there are; 0: as many as it takes
    bool dots = false; ///< whether there are Braille patterns
};

/// All charts and, below them, an axis that says how long ago it was; or as many charts as fit and
/// a line that counts the others.
///
/// @param times  of the samples that each panel has, in nanoseconds; none: no axis
QStringList plotFrame(const QVector<PlotPanel> &panels, const QVector<qint64> &times,
                      const PlotArea &area);

#endif
