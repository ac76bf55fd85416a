// SPDX-License-Identifier: MIT
// What the columns of a screen hold.
#ifndef SCREENCOLUMNS_H
#define SCREENCOLUMNS_H

#include "Report.h"

const QChar ellipsis(0x2026);

/// How a column is treated where room is scarce.
enum class ColumnKind {
    Other, ///< as wide as its longest cell
    Name, ///< shortened at its beginning
    Path, ///< likewise
    Text, ///< shortened at its end
    Value, ///< never shortened; a long one stands below its row
    Time, ///< shown as an age
    Prose, ///< sentences; stand below their row
};

ColumnKind kindOf(const Column &column);

inline bool isProse(const Column &column)
{
    return kindOf(column) == ColumnKind::Prose;
}

bool isAlignedRight(const Column &column);
QString titleOf(const Column &column);

/// A cell without what steers a terminal; of a Name as it is, for it is taken apart first.
///
/// @param now  nanoseconds since the epoch
QString shownText(const Cell &cell, ColumnKind kind, qint64 now);

/// Texts of at most a width; what is longer has an ellipsis.
QStringList shortened(QStringList texts, int width, ColumnKind kind);

#endif
