// SPDX-License-Identifier: MIT
// Motions that depend on the time alone: waves, walks, counters, sequences.
#ifndef WAVEMOTION_H
#define WAVEMOTION_H

#include "Motion.h"

#include <random>

struct Range
{
    double lowest = 0;
    double highest = 0;
};

/// A periodic movement. Units: amplitude and offset the leaf's, period seconds, phase periods.
struct Wave
{
    enum Shape {
        Sine, ///< offset ± amplitude
        Ramp, ///< from offset to offset + amplitude, then back at once
        Square, ///< half a period at offset + amplitude, half a period at offset - amplitude
    };

    Shape shape = Sine;
    double offset = 0;
    double amplitude = 1;
    double period = 1;
    double phase = 0;

    Range swing() const;
    double at(qint64 elapsed) const;
};

class WaveMotion : public Motion
{
public:
    WaveMotion(LeafType type, const Wave &wave);
    QVariant next(qint64 elapsed, const ValueReader &read) override;

private:
    const LeafType type;
    const Wave wave;
};

/// Values in turn, each for one interval (milliseconds). One value alone stays for ever.
class SequenceMotion : public Motion
{
public:
    SequenceMotion(QVector<QVariant> values, double interval);
    QVariant next(qint64 elapsed, const ValueReader &read) override;

private:
    const QVector<QVariant> values;
    const double interval;
};

/// A random step of at most ±step each interval (milliseconds), turned back at the range's ends.
struct Walk
{
    double start = 0;
    double step = 1;
    double interval = 1000;
    Range range;
    quint32 seed = 0;
};

class RandomWalkMotion : public Motion
{
public:
    RandomWalkMotion(LeafType type, const Walk &walk);
    QVariant next(qint64 elapsed, const ValueReader &read) override;

private:
    const LeafType type;
    const Walk walk;
    std::mt19937 generator;
    double current;
    qint64 stepsDone = 0;
};

/// One step each interval (milliseconds); starts over where the range ends.
struct Count
{
    double start = 0;
    double step = 1;
    double interval = 1000;
    Range range;
};

class CounterMotion : public Motion
{
public:
    CounterMotion(LeafType type, const Count &count);
    QVariant next(qint64 elapsed, const ValueReader &read) override;

private:
    const LeafType type;
    const Count count;
};

#endif
