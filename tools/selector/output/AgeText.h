// SPDX-License-Identifier: MIT
// How long ago something was.
#ifndef AGETEXT_H
#define AGETEXT_H

#include <QString>

/// For people, in whole units: "< 1 s", "3 s", "2 min", "5 h", "3 d"; "in 3 s" when it is still to
/// come. Both times are nanoseconds since the epoch.
///
/// @param timestamp  0: none, which gives an empty text
QString ageText(qint64 timestamp, qint64 now);

/// The same as a number; negative when it is still to come.
double ageInSeconds(qint64 timestamp, qint64 now);

/// The time of this moment, with milliseconds as its finest step.
qint64 currentTime();

#endif
