// SPDX-License-Identifier: MIT
// Values of waves, sequences, random walks and counters at a time.
#include "WaveMotion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double millisecondsPerSecond = 1000;
constexpr qint64 mostStepsAtOnce = 10000; // after a suspend: enough to be anywhere in the range

} // namespace

Range Wave::swing() const
{
    const double size = std::abs(amplitude);
    if (shape == Ramp) {
        return {std::min(offset, offset + amplitude), std::max(offset, offset + amplitude)};
    }
    return {offset - size, offset + size};
}

double Wave::at(qint64 elapsed) const
{
    const double periods = static_cast<double>(elapsed) / millisecondsPerSecond / period + phase;
    const double position = periods - std::floor(periods);
    switch (shape) {
    case Ramp:
        return offset + amplitude * position;
    case Square:
        return position < 0.5 ? offset + amplitude : offset - amplitude;
    case Sine:
        break;
    }
    return offset + amplitude * std::sin(2 * pi * position);
}

WaveMotion::WaveMotion(LeafType type, const Wave &wave)
    : type(std::move(type))
    , wave(wave)
{
}

QVariant WaveMotion::next(qint64 elapsed, const ValueReader &read)
{
    Q_UNUSED(read)
    return valueFromNumber(type, wave.at(elapsed));
}

SequenceMotion::SequenceMotion(QVector<QVariant> values, double interval)
    : values(std::move(values))
    , interval(interval)
{
}

QVariant SequenceMotion::next(qint64 elapsed, const ValueReader &read)
{
    Q_UNUSED(read)
    const double turns = std::floor(static_cast<double>(elapsed) / interval);
    return values.at(static_cast<int>(std::fmod(turns, values.size())));
}

RandomWalkMotion::RandomWalkMotion(LeafType type, const Walk &walk)
    : type(std::move(type))
    , walk(walk)
    , generator(walk.seed)
    , current(walk.start)
{
}

QVariant RandomWalkMotion::next(qint64 elapsed, const ValueReader &read)
{
    Q_UNUSED(read)
    const auto stepsDue = static_cast<qint64>(static_cast<double>(elapsed) / walk.interval);
    const qint64 steps = std::min(stepsDue - stepsDone, mostStepsAtOnce);
    // The standard's distributions differ between libraries; this one is the same everywhere.
    constexpr double half = 2147483648.0;
    for (qint64 i = 0; i < steps; ++i) {
        const double step = (static_cast<double>(generator()) / half - 1) * walk.step;
        const bool outside
            = current + step < walk.range.lowest || current + step > walk.range.highest;
        current = qBound(walk.range.lowest, outside ? current - step : current + step,
                         walk.range.highest);
    }
    stepsDone = stepsDue;
    return valueFromNumber(type, current);
}

CounterMotion::CounterMotion(LeafType type, const Count &count)
    : type(std::move(type))
    , count(count)
{
}

QVariant CounterMotion::next(qint64 elapsed, const ValueReader &read)
{
    Q_UNUSED(read)
    const double room
        = count.step > 0 ? count.range.highest - count.start : count.start - count.range.lowest;
    const double positions = std::floor(room / std::abs(count.step)) + 1;
    const double steps = std::floor(static_cast<double>(elapsed) / count.interval);
    return valueFromNumber(type, count.start + count.step * std::fmod(steps, positions));
}
