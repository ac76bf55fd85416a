// SPDX-License-Identifier: MIT
// Times as people type them.
#ifndef DURATION_H
#define DURATION_H

#include <QString>

#include <optional>

constexpr double millisecondsPerSecond = 1000;

/// Milliseconds of a text such as "500ms", "1.5s", "2min", "1h" or "7d"; nothing when it is not a
/// number with one of these units, or with none.
///
/// @param bareUnit  milliseconds that a number without unit counts
/// @returns what the text says; also no time at all, a negative or an endless one
std::optional<double> millisecondsFromText(const QString &text, double bareUnit);

#endif
