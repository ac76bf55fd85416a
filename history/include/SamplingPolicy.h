// SPDX-License-Identifier: MIT
// Decides which values become samples.
#ifndef SAMPLINGPOLICY_H
#define SAMPLINGPOLICY_H

#include "ProcessDataDefinitions.h"

#include <QVariant>
#include <QtGlobal>

/// When a value is worth a sample. Times and durations are nanoseconds.
struct SamplingRule
{
    qint64 every = 0; ///< least time between two samples; 0 for none
    /// A number that differs from the last sample by this much or less is not worth one, in the
    /// value's unit. 0: any change is worth one. Other types are compared whole.
    double deadband = 0;
    qint64 atLeastEvery = 0; ///< a sample is due after this time even without a change; 0: never

    /// The deadband of a share of a range.
    ///
    /// @param percent  0 to 100
    /// @returns 0, any change, when the range is empty, reversed or infinite
    static double ofRange(double percent, double minimum, double maximum);
};

/// The sampling of one selector. Pure: it holds the last sample and asks no clock.
///
/// A change of error type is always worth a sample, within @c every too: a loss must show when it
/// happens. So is the first value. A clock that is set back starts the times anew.
///
/// Threads: a value type.
class SamplingPolicy
{
public:
    explicit SamplingPolicy(const SamplingRule &rule = {});

    /// Whether this value becomes a sample; if so, it is what the next ones are compared with.
    ///
    /// @param now  when it was read
    bool take(const QVariant &value, ProcessDataDefinitions::ErrorTypes errorType, qint64 now);

    /// The next value becomes a sample: after a gap.
    void reset();

private:
    bool differs(const QVariant &value) const;

    SamplingRule rule;
    QVariant lastValue;
    ProcessDataDefinitions::ErrorTypes lastErrorType = ProcessDataDefinitions::NoError;
    qint64 lastTime = 0;
    bool hasLast = false;
};

#endif
