// SPDX-License-Identifier: MIT
// Chooses the view.
#include "WatchViews.h"

#include "PlotScreen.h"
#include "TableScreen.h"
#include "WideView.h"

std::unique_ptr<WatchView> makeView(WatchOptions::View view, const QVector<WatchTarget> &targets,
                                    const Console &console)
{
    switch (view) {
    case WatchOptions::Plot:
        return std::make_unique<PlotScreen>(targets, console,
                                            TerminalAbilities::ofStandardOutput());
    case WatchOptions::Table:
        return std::make_unique<TableScreen>(targets, console,
                                             TerminalAbilities::ofStandardOutput());
    case WatchOptions::Wide:
        return std::make_unique<WideView>(targets, console);
    case WatchOptions::Lines:
        break;
    }
    return nullptr;
}
