// SPDX-License-Identifier: MIT
// Charts one below the other.
#ifndef PLOTFRAME_H
#define PLOTFRAME_H

#include "PlotPanel.h"
#include "WatchTargets.h"

/// Titles of the charts, one for each target and all different: the target's name; where several
/// have that name, as much of their URLs' ends as tells them apart; for one selector twice a number.
QStringList plotTitles(const QVector<WatchTarget> &targets);

/// All charts, or as many as fit and a line that counts the others.
///
/// @param lines  there are; 0: as long as it takes
QStringList plotFrame(const QVector<PlotPanel> &panels, int width, int lines, bool dots);

#endif
