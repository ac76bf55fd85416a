// SPDX-License-Identifier: MIT
// Values that follow from their times, so that a reader sees at once what does not belong together.
#ifndef TORNREADS_H
#define TORNREADS_H

#include "BufferSource.h"

/// Number of leaves whose values follow from their times: numbers first, then a text and bytes.
constexpr int tornLeafCount = 6;
constexpr int tornNumberCount = 4;

/// The template of a source with such leaves; leaf i is named "leaf" and i.
QJsonArray tornLeaves();

/// What leaf i holds at a time.
ProcessValue tornValue(int leaf, qint64 time);

/// Whether value, status and time of a reading belong together.
bool belongsTogether(int leaf, const ProcessValue &value);

/// Runs one of the writers below until the standard input ends.
///
/// @param kind  "publish": makes the source and writes all its leaves in batches, at even times;
///              "write": as a client, at odd times; "tear": as a client that breaks the rules: it
///              changes the copy that is valid
/// @returns the exit code
int runWriter(const QString &kind, const QString &argument);

#endif
