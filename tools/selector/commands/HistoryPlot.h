// SPDX-License-Identifier: MIT
// Charts of what was recorded.
#ifndef HISTORYPLOT_H
#define HISTORYPLOT_H

#include "LookBack.h"

#include <QStringList>

/// Where a chart is drawn.
struct ChartSize
{
    int width = 80; ///< columns
    bool dots = false; ///< whether there are Braille patterns
};

/// Draws one selector over a range: the mean of what a column stands for, or else the value that
/// held. What is not known, or is not a number without error, is a gap.
///
/// @param lines  receives the chart
/// @returns false when the database failed; the reader says why
bool drawHistory(HistoryReader &reader, const LookBack &asked, const PastSelector &selector,
                 const QString &title, const ChartSize &size, QStringList &lines);

/// The line below the charts: where the range begins and ends.
QString rangeLine(const LookBack &asked, const ChartSize &size);

#endif
