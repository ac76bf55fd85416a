// SPDX-License-Identifier: MIT
// The words of conditions.
#ifndef UNTILTOKENS_H
#define UNTILTOKENS_H

#include <QString>

struct UntilToken
{
    enum Kind { End, Sign, Number, Time, Text, Position, Name };

    Kind kind = End;
    QString text; ///< without quotes and #
    int place = 1; ///< 1-based, for people
};

/// Takes the next token off a text.
///
/// @param position  where it is looked for; receives where the one behind it begins
/// @returns false at a character that begins nothing
bool nextToken(const QString &text, int &position, UntilToken &token);

#endif
