// SPDX-License-Identifier: MIT
// Charts of all watched selectors on the terminal.
#ifndef PLOTSCREEN_H
#define PLOTSCREEN_H

#include "Console.h"
#include "PlotPanel.h"
#include "WatchTargets.h"

/// What the terminal can do.
struct PlotAbilities
{
    bool moves = false; ///< it can move the cursor, so the chart is drawn over itself
    bool dots = false; ///< it has Braille patterns

    /// As the environment says: dots need a UTF-8 locale and more than the kernel's own console.
    static PlotAbilities ofStandardOutput();
};

/// Panels one below the other. Without a terminal that can move its cursor the chart is printed
/// once, at the end.
class PlotScreen
{
public:
    PlotScreen(const QVector<WatchTarget> &targets, const Console &console,
               const PlotAbilities &abilities);

    PlotPanel &panel(int index) { return panels[index]; }

    void draw();
    void finish();

private:
    QStringList frame() const;

    QVector<PlotPanel> panels;
    const Console console;
    const PlotAbilities abilities;
    int drawnLines = 0;
};

#endif
