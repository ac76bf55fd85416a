// SPDX-License-Identifier: MIT
// Ticks that do not drift.
#ifndef STEADYTICKS_H
#define STEADYTICKS_H

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Ticks at its beginning and at whole multiples of its interval after it. A tick whose time passed
/// while the event loop was kept busy is left out, so that the next one is on time.
///
/// Threads: that of its object, with a running event loop.
class SteadyTicks : public QObject
{
    Q_OBJECT

public:
    /// @param interval  milliseconds
    explicit SteadyTicks(int interval);

    /// The first tick comes before this returns.
    void start();
    void stop();

Q_SIGNALS:
    /// @param time  of the tick, in nanoseconds since the epoch: the interval's multiple after the
    ///              beginning, whatever somebody does to the system's clock meanwhile
    void ticked(qint64 time);

private:
    void tick();

    const qint64 interval; ///< milliseconds
    QElapsedTimer clock;
    QTimer timer;
    qint64 beginning = 0; ///< nanoseconds since the epoch
    qint64 number = 0; ///< of the tick that is due next
};

#endif
