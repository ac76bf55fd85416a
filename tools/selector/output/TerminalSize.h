// SPDX-License-Identifier: MIT
// The size of the terminal that results go to.
#ifndef TERMINALSIZE_H
#define TERMINALSIZE_H

struct TerminalSize
{
    int width = 80; ///< columns; 80 where the terminal does not say, as a serial line
    int height = 0; ///< lines; 0: not known, or not a terminal

    /// As the terminal says at this moment.
    static TerminalSize ofStandardOutput();
};

#endif
