// SPDX-License-Identifier: MIT
// What a watch shows in place of a line for each change.
#ifndef WATCHVIEW_H
#define WATCHVIEW_H

#include "Entries.h"

#include <QObject>
#include <QVector>

/// Shows all selectors at once. Each look at them counts as a line.
class WatchView : public QObject
{
    Q_OBJECT

public:
    /// Before the first look.
    virtual void start() = 0;

    /// After each look.
    ///
    /// @param results  one for each selector
    /// @param time     of the look, in nanoseconds since the epoch
    virtual void show(const QVector<ReadResult> &results, qint64 time) = 0;

    /// Gives the terminal back and prints what was kept for the end.
    virtual void finish() = 0;

Q_SIGNALS:
    /// Whoever sits at the terminal has seen enough.
    void left();
};

#endif
