// SPDX-License-Identifier: MIT
// The tables, their version, and how older ones are brought forward.
#ifndef HISTORYSCHEMA_H
#define HISTORYSCHEMA_H

#include "HistoryConnection.h"

#include <functional>
#include <vector>

namespace HistorySchema {

constexpr int version = 1;

/// Brings a database from one version to the next, within a transaction.
using Step = std::function<bool(HistoryConnection &)>;

/// Makes the tables in an empty database, or brings those of an older version forward.
///
/// @param steps  entry i leads from version i + 1 to i + 2
/// @returns an error without the place's name, or empty
QString prepare(HistoryConnection &connection, const std::vector<Step> &steps = {});

/// Whether the tables are there and of this version.
///
/// @param found  the version
/// @returns as prepare()
QString check(HistoryConnection &connection, int *found);

/// Makes the partition of a day, where tables have partitions. The table's default one takes times
/// before 2000 and after 2100.
bool makeDay(HistoryConnection &connection, qint64 day);
bool hasPartition(qint64 day);
/// Drops whole days; returns false on failure.
bool dropDaysBefore(HistoryConnection &connection, qint64 day);

constexpr qint64 dayLength = qint64(86400) * 1'000'000'000;

} // namespace HistorySchema

#endif
