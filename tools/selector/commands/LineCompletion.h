// SPDX-License-Identifier: MIT
// What shells offer for the word that a person is typing.
#ifndef LINECOMPLETION_H
#define LINECOMPLETION_H

#include "Command.h"

struct Offer
{
    Arguments::Kind kind = Arguments::Words;
    QStringList words; ///< whole ones, when that is the kind; none: nothing fits
};

/// Needs no bus. Offers what the command accepts: no more arguments than it takes.
///
/// @param line  words behind the program's name; the last is being typed
Offer offerFor(QStringList line);

#endif
