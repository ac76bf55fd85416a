// SPDX-License-Identifier: MIT
// Selectors of a history, with those that were recorded in the place of patterns and groups.
#ifndef HISTORYSELECTION_H
#define HISTORYSELECTION_H

#include "ListFile.h"

#include <QStringList>

/// A line that was recorded as it is, and one that matches nothing, stay as they are.
///
/// @param recorded  the selectors of the database
QVector<ListLine> recordedLines(const QVector<ListLine> &typed, const QStringList &recorded);

#endif
