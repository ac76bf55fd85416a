// SPDX-License-Identifier: MIT
// Reads times with their unit, which must not be left out.
#include "DurationOption.h"

#include "Duration.h"

#include <cmath>

bool readDuration(const CommandLine &line, const char *option, qint64 longest, qint64 &nanoseconds,
                  QString &error)
{
    constexpr double nanosecondsPerMillisecond = 1e6;
    if (!line.has(option)) {
        return true;
    }
    const auto milliseconds = millisecondsFromText(line.text(option), std::nan(""));
    const double wanted = milliseconds.value_or(0) * nanosecondsPerMillisecond;
    if (!(wanted >= 1)) {
        error
            = QStringLiteral("--%1 must be a time with its unit, such as 500ms, 30s, 15min, 2h or "
                             "7d, not \"%2\"")
                  .arg(QLatin1String(option), line.text(option));
        return false;
    }
    if (!(wanted <= static_cast<double>(longest))) {
        constexpr double nanosecondsPerDay = 86400e9;
        error = QStringLiteral("--%1 must be at most %2d, not \"%3\"")
                    .arg(QLatin1String(option))
                    .arg(std::floor(static_cast<double>(longest) / nanosecondsPerDay))
                    .arg(line.text(option));
        return false;
    }
    nanoseconds = std::llround(wanted);
    return true;
}
