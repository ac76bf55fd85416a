// SPDX-License-Identifier: MIT
// Compares ages.
#include "MaximumAge.h"

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;

// In the largest unit of which it is a whole number.
QString lengthText(int milliseconds)
{
    static constexpr struct
    {
        int length;
        const char *unit;
    } units[]{{3600000, "h"}, {60000, "min"}, {1000, "s"}};
    for (const auto &unit : units) {
        if (milliseconds % unit.length == 0) {
            return QStringLiteral("%1 %2")
                .arg(milliseconds / unit.length)
                .arg(QLatin1String(unit.unit));
        }
    }
    return QStringLiteral("%1 ms").arg(milliseconds);
}

} // namespace

Finding MaximumAge::judge(const LeafValue &value, qint64 now) const
{
    const bool hasTime = value.timestamp != 0;
    // The age of an absurd time may be no number of nanoseconds.
    const qint64 oldest = now - milliseconds * nanosecondsPerMillisecond;
    if (milliseconds == 0 || value.isMissing() || (!hasTime && !value.isGood())
        || value.timestamp >= oldest) {
        return {};
    }
    return {Finding::Stale, QStringLiteral("older than %1").arg(lengthText(milliseconds))};
}
