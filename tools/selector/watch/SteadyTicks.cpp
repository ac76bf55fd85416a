// SPDX-License-Identifier: MIT
// Keeps ticks on time.
#include "SteadyTicks.h"

#include "AgeText.h"

#include <algorithm>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;

} // namespace

SteadyTicks::SteadyTicks(int interval)
    : interval(interval)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &SteadyTicks::tick);
}

void SteadyTicks::start()
{
    beginning = currentTime();
    clock.start();
    number = 0;
    tick();
}

void SteadyTicks::stop()
{
    timer.stop();
}

void SteadyTicks::tick()
{
    const qint64 passed = clock.elapsed() / interval; // intervals
    if (passed < number) { // the timer was a little early
        timer.start(static_cast<int>(number * interval - clock.elapsed()));
        return;
    }
    const qint64 due = passed;
    number = due + 1;
    timer.start(static_cast<int>(std::max<qint64>(0, number * interval - clock.elapsed())));
    Q_EMIT ticked(beginning + due * interval * nanosecondsPerMillisecond);
}
