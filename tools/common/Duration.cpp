// SPDX-License-Identifier: MIT
// Reads times with their unit.
#include "Duration.h"

std::optional<double> millisecondsFromText(const QString &text, double bareUnit)
{
    static const struct
    {
        const char *name;
        double milliseconds;
    } units[]{{"ms", 1}, // before "s", which it ends with
              {"s", millisecondsPerSecond},
              {"min", 60 * millisecondsPerSecond},
              {"h", 3600 * millisecondsPerSecond},
              {"d", 24 * 3600 * millisecondsPerSecond}};
    QString number = text;
    double unit = bareUnit;
    for (const auto &one : units) {
        const QLatin1String name(one.name);
        if (text.endsWith(name)) {
            number = text.chopped(name.size());
            unit = one.milliseconds;
            break;
        }
    }
    bool ok = false;
    const double count = number.toDouble(&ok);
    return ok ? std::optional<double>(count * unit) : std::nullopt;
}
