// SPDX-License-Identifier: MIT
// Asks the terminal for its size.
#include "TerminalSize.h"

#include <sys/ioctl.h>
#include <unistd.h>

TerminalSize TerminalSize::ofStandardOutput()
{
    struct winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return {};
    }
    return {size.ws_col, size.ws_row};
}
