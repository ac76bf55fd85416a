// SPDX-License-Identifier: MIT
// One row for each instant.
#ifndef WIDEVIEW_H
#define WIDEVIEW_H

#include "Console.h"
#include "WatchTargets.h"
#include "WatchView.h"

/// Prints a row at each look, with a column for each selector. What is not good is left empty: its
/// last value would look like a steady one.
class WideView : public WatchView
{
    Q_OBJECT

public:
    WideView(const QVector<WatchTarget> &targets, const Console &console);

    void start() override;
    void show(const QVector<ReadResult> &results, qint64 time) override;
    void finish() override { }

    /// The line above the first row; empty for JSON, and where none is wanted.
    QString header() const;

    /// @param time  nanoseconds since the epoch
    QString row(const QVector<ReadResult> &results, qint64 time) const;

private:
    QVector<Column> columns;
    QVector<int> widths;
    const Console console;
};

#endif
