// SPDX-License-Identifier: MIT
// Charts of all watched selectors on the terminal.
#ifndef PLOTSCREEN_H
#define PLOTSCREEN_H

#include "Console.h"
#include "PlotPanel.h"
#include "Terminal.h"
#include "TerminalAbilities.h"
#include "WatchTargets.h"
#include "WatchView.h"

#include <QElapsedTimer>

/// Panels one below the other. Without a terminal that can move its cursor the chart is printed
/// once, at the end.
class PlotScreen : public WatchView
{
    Q_OBJECT

public:
    PlotScreen(const QVector<WatchTarget> &targets, const Console &console,
               const TerminalAbilities &abilities);

    void start() override;
    void show(const QVector<ReadResult> &results, qint64 time) override;
    void finish() override;

private:
    QStringList frame() const;
    void draw();

    QVector<PlotPanel> panels;
    QVector<qint64> times; ///< of the samples, in nanoseconds since the beginning
    QElapsedTimer clock;
    const Console console;
    const TerminalAbilities abilities;
    std::unique_ptr<Terminal> terminal;
    int drawnLines = 0;
};

#endif
