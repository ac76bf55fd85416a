// SPDX-License-Identifier: MIT
// Events, and the gaps that follow from them.
#ifndef HISTORYGAPS_H
#define HISTORYGAPS_H

#include "HistoryConnection.h"
#include "HistoryTypes.h"

namespace HistoryGaps {

/// Events before @p until in the order of their time.
bool read(HistoryConnection &connection, qint64 until, QVector<HistoryEvent> *found);

/// Whether the event, or the time that it speaks of, lies in the range.
bool touches(const HistoryEvent &event, qint64 from, qint64 until);

/// @param events  all up to the end of the range, and those about it that were recorded later
QVector<HistoryGap> of(const QVector<HistoryEvent> &events, const QString &selector, qint64 from,
                       qint64 until);

} // namespace HistoryGaps

#endif
