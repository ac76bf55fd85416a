// SPDX-License-Identifier: MIT
// How samples and events stand in their tables' columns.
#ifndef HISTORYCOLUMNS_H
#define HISTORYCOLUMNS_H

#include "HistoryTypes.h"

#include <QSqlQuery>

namespace HistoryEvents {

QString kindName(HistoryEvent::Kind kind);
/// @returns false for a name that this version does not know
bool kindOf(const QString &name, HistoryEvent::Kind *kind);

} // namespace HistoryEvents

/// The columns of a sample's value, and how one is read from them.
namespace HistoryColumns {

QString value(bool sqlite);
int count(bool sqlite);
QVariant read(const QSqlQuery &query, int column, bool sqlite);

} // namespace HistoryColumns

#endif
