// SPDX-License-Identifier: MIT
// Characters that are not seen, and their spelling.
#ifndef UNSEENCHARACTERS_H
#define UNSEENCHARACTERS_H

#include <QString>

/// Whether a character shows itself: false for control characters, for those that steer others
/// (bidirectional controls, zero-width characters, tags), ends of lines, and half a surrogate pair.
bool isSeen(uint character);

/// The spelling of a character in hexadecimal digits: \uHHHH, or \UHHHHHHHH beyond U+FFFF.
///
/// @param firstLong  from which on; \xHH below. At most 0x100.
QString hexadecimalEscape(uint character, uint firstLong);

#endif
