// SPDX-License-Identifier: MIT
// Text on one line, from which it can be read back.
#ifndef ESCAPEDTEXT_H
#define ESCAPEDTEXT_H

#include <QString>

/// Spells a text so that it fits on one line, shows all that is in it, and is spelled by no other
/// text: an empty text as \c; a backslash as \\, line feed, carriage return and tab as \n, \r and \t; other characters
/// that are not seen, and a blank at either end, as \xHH below U+0080, \uHHHH, or \UHHHHHHHH beyond
/// U+FFFF.
QString escapedText(const QString &text);

/// Reads such a spelling. What needs no escape may have one, too.
///
/// @param error  receives what is wrong, without the text itself; left alone on success
bool textFromEscapes(const QString &spelled, QString &text, QString &error);

#endif
