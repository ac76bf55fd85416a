// SPDX-License-Identifier: MIT
// Renders ages.
#include "AgeText.h"

#include <QDateTime>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;
constexpr qint64 nanosecondsPerSecond = 1000 * nanosecondsPerMillisecond;
constexpr qint64 minute = 60; // seconds
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

QString lengthText(qint64 seconds)
{
    if (seconds < minute) {
        return QStringLiteral("%1 s").arg(seconds);
    }
    if (seconds < hour) {
        return QStringLiteral("%1 min").arg(seconds / minute);
    }
    return seconds < day ? QStringLiteral("%1 h").arg(seconds / hour)
                         : QStringLiteral("%1 d").arg(seconds / day);
}

} // namespace

QString ageText(qint64 timestamp, qint64 now)
{
    if (timestamp == 0) {
        return {};
    }
    // Seconds first: the difference of any two times is one then.
    const qint64 seconds = now / nanosecondsPerSecond - timestamp / nanosecondsPerSecond;
    const qint64 rest = now % nanosecondsPerSecond - timestamp % nanosecondsPerSecond;
    const qint64 whole = rest < 0 && seconds > 0 ? seconds - 1
        : rest > 0 && seconds < 0                ? seconds + 1
                                                 : seconds;
    if (whole == 0) {
        return QStringLiteral("< 1 s");
    }
    return whole > 0 ? lengthText(whole) : QStringLiteral("in ") + lengthText(-whole);
}

double ageInSeconds(qint64 timestamp, qint64 now)
{
    const qint64 seconds = now / nanosecondsPerSecond - timestamp / nanosecondsPerSecond;
    const qint64 rest = now % nanosecondsPerSecond - timestamp % nanosecondsPerSecond;
    return double(seconds) + double(rest) / double(nanosecondsPerSecond);
}

qint64 currentTime()
{
    return QDateTime::currentMSecsSinceEpoch() * nanosecondsPerMillisecond;
}
