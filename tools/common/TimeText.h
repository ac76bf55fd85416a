// SPDX-License-Identifier: MIT
// Reads times as people write them.
#ifndef TIMETEXT_H
#define TIMETEXT_H

#include <QString>

/// Reads a time of day or a time of the calendar, of local time unless it says another:
/// "now", "today", "yesterday 22:00", "22:00" (of today), "-15min" (before now), "2026-11-21",
/// "2026-11-21 22:00:05.250", "2026-11-21T22:00:05+01:00", "2026-11-21T21:00:05Z".
/// A day alone is its beginning. Digits up to nanoseconds count.
///
/// A time that local clocks never showed, because they were put forward, or showed twice, because
/// they were put back, is refused, unless it says its offset.
///
/// @param now    the present time, in nanoseconds since 1970-01-01 00:00 UTC
/// @param time   receives the same of the text, 1970 to 2261; left alone on failure
/// @param error  receives what is wrong and what is expected, with the text itself
bool timeFromText(const QString &text, qint64 now, qint64 &time, QString &error);

#endif
