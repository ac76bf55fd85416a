// SPDX-License-Identifier: MIT
// What a recording came to.
#ifndef RECORDREPORT_H
#define RECORDREPORT_H

#include "Console.h"
#include "Finding.h"
#include "HistoryRecorder.h"

struct RecordResult
{
    QString url;
    QString label; ///< what the person calls it; empty without
    int position = -1; ///< in the recorder; -1: it cannot be recorded
    HistoryRecorder::Outcome outcome;
    Finding finding; ///< why nothing of it was stored
};

struct RecordEnd
{
    QString database;
    bool isWritten = false; ///< nothing waits any more
    qint64 dropped = 0;
    QString trouble = {}; ///< why it could not be written; empty when it could
};

/// Fills in what became of the selectors, asking services about those that never had a value.
void finishResults(const HistoryRecorder &recorder, QVector<RecordResult> &results);

/// @returns the exit code that it earns
int printRecordReport(const QVector<RecordResult> &results, const RecordEnd &end,
                      const Console &console);

#endif
