// SPDX-License-Identifier: MIT
// The table of all watched selectors on the terminal.
#ifndef TABLESCREEN_H
#define TABLESCREEN_H

#include "Console.h"
#include "Terminal.h"
#include "TerminalAbilities.h"
#include "WatchTable.h"
#include "WatchView.h"

#include <QElapsedTimer>
#include <QTimer>

#include <memory>

/// Keeps one row a selector in place. Only lines that differ are written: a serial line is slow.
/// Without a terminal that can move its cursor the table is printed once, at the end.
class TableScreen : public WatchView
{
    Q_OBJECT

public:
    TableScreen(const QVector<WatchTarget> &targets, const Console &console,
                const TerminalAbilities &abilities);

    void start() override;
    void show(const QVector<ReadResult> &results, qint64 time) override;
    void finish() override;

private:
    void press(const QString &key);
    void drawAnew();
    void draw();

    WatchTable table;
    const Console console;
    const TerminalAbilities abilities;
    std::unique_ptr<Terminal> terminal;
    QElapsedTimer clock;
    QTimer ages; ///< draws when nothing else does
    QStringList drawn; ///< what stands on the screen
};

#endif
