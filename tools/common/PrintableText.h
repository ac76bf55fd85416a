// SPDX-License-Identifier: MIT
// Text of others made safe to look at.
#ifndef PRINTABLETEXT_H
#define PRINTABLETEXT_H

#include <QString>

/// Text without characters that steer a terminal, reverse what stands beside them, or are not seen
/// at all: they become \n, \t, \x1b, \u202e, \U000e0041 … Half a surrogate pair is such a character.
QString printable(const QString &text);

#endif
