// SPDX-License-Identifier: MIT
// The axis below charts.
#ifndef TIMEAXIS_H
#define TIMEAXIS_H

#include <QString>
#include <QVector>

/// One line that says at some columns how long before the newest sample theirs were taken: as it was,
/// not as it should have been.
///
/// @param times  of the samples, in nanoseconds, the newest last, which is at the right end
/// @param width  of the charts with their labels, in columns
/// @param dots   whether a column has two samples, as Braille patterns have
QString timeAxis(const QVector<qint64> &times, int width, bool dots);

#endif
