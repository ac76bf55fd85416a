// SPDX-License-Identifier: MIT
// Standard input, output and error of a program whose parent may have closed some of them.
#include "StandardStreams.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

void reserveStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) {
            continue;
        }
        // Opened the wrong way round, so that its use fails. The lowest free number is this one.
        const int wrongWay = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (::open("/dev/null", wrongWay) != stream) {
            return;
        }
    }
}
