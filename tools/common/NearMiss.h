// SPDX-License-Identifier: MIT
// What a mistyped word was probably meant to be.
#ifndef NEARMISS_H
#define NEARMISS_H

#include <QString>
#include <QStringList>

/// The known words that come nearest to what was typed, at most three in their order; none when all
/// are too far away. Letters put in, left out, replaced or swapped with their neighbour count one
/// each, and at most a third of the typed letters may be wrong; a difference in case alone is the
/// nearest. What was typed rightly is not a near miss.
///
/// Threads: any. Takes milliseconds for ten thousand words.
QStringList nearMisses(const QString &typed, const QStringList &known);

/// The same as a question: did you mean "speed" or "speed2"? Empty when there are none.
QString didYouMean(const QString &typed, const QStringList &known);

#endif
