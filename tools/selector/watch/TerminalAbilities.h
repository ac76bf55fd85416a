// SPDX-License-Identifier: MIT
// What the terminal can do.
#ifndef TERMINALABILITIES_H
#define TERMINALABILITIES_H

struct TerminalAbilities
{
    bool moves = false; ///< it can move the cursor, so that pictures are drawn over themselves
    bool dots = false; ///< it has Braille patterns

    /// As the environment says: dots need a UTF-8 locale and more than the kernel's own console.
    static TerminalAbilities ofStandardOutput();
};

#endif
