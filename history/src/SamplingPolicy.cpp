// SPDX-License-Identifier: MIT
// Decides which values become samples.
#include "SamplingPolicy.h"

#include <cmath>
#include <cstring>

namespace {

bool sameBits(double left, double right)
{
    quint64 leftBits = 0;
    quint64 rightBits = 0;
    std::memcpy(&leftBits, &left, sizeof left);
    std::memcpy(&rightBits, &right, sizeof right);
    return leftBits == rightBits;
}

// Differences of 64-bit integers are formed without a sign: those of doubles would lose bits.
bool integersDiffer(const QVariant &left, const QVariant &right, double deadband)
{
    quint64 difference = 0;
    if (left.userType() == QMetaType::ULongLong) {
        const quint64 a = left.toULongLong();
        const quint64 b = right.toULongLong();
        difference = a > b ? a - b : b - a;
    } else {
        const qint64 a = left.toLongLong();
        const qint64 b = right.toLongLong();
        difference = a > b ? quint64(a) - quint64(b) : quint64(b) - quint64(a);
    }
    return difference != 0 && double(difference) > deadband;
}

bool floatsDiffer(double left, double right, double deadband)
{
    if (std::isnan(left) || std::isnan(right)) {
        return !sameBits(left, right);
    }
    if (deadband <= 0) {
        return !sameBits(left, right);
    }
    return left != right && !(std::abs(left - right) <= deadband);
}

} // namespace

double SamplingRule::ofRange(double percent, double minimum, double maximum)
{
    const double range = maximum - minimum;
    return std::isfinite(range) && range > 0 ? range * percent / 100 : 0;
}

SamplingPolicy::SamplingPolicy(const SamplingRule &rule)
    : rule(rule)
{
}

bool SamplingPolicy::take(const QVariant &value, ProcessDataDefinitions::ErrorTypes errorType,
                          qint64 now)
{
    const qint64 passed = now - lastTime;
    const bool free = passed < 0 || passed >= rule.every;
    const bool due = passed < 0 || (rule.atLeastEvery > 0 && passed >= rule.atLeastEvery);
    if (hasLast && errorType == lastErrorType && !(free && (due || differs(value)))) {
        return false;
    }
    lastValue = value;
    lastErrorType = errorType;
    lastTime = now;
    hasLast = true;
    return true;
}

void SamplingPolicy::reset()
{
    hasLast = false;
}

bool SamplingPolicy::differs(const QVariant &value) const
{
    if (value.userType() != lastValue.userType()) {
        return true;
    }
    switch (value.userType()) {
    case QMetaType::Float:
    case QMetaType::Double:
        return floatsDiffer(value.toDouble(), lastValue.toDouble(), rule.deadband);
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return integersDiffer(value, lastValue, rule.deadband);
    default:
        return value != lastValue;
    }
}
