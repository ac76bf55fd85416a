// SPDX-License-Identifier: MIT
// Asks the environment what the terminal can do.
#include "TerminalAbilities.h"

#include <QByteArray>

#include <unistd.h>

namespace {

bool localeIsUtf8()
{
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const QByteArray value = qgetenv(name).toLower();
        if (!value.isEmpty()) {
            return value.contains("utf-8") || value.contains("utf8");
        }
    }
    return false;
}

} // namespace

TerminalAbilities TerminalAbilities::ofStandardOutput()
{
    const QByteArray terminal = qgetenv("TERM");
    const bool moves
        = ::isatty(STDOUT_FILENO) != 0 && !terminal.isEmpty() && terminal != QByteArray("dumb");
    return {moves, moves && terminal != QByteArray("linux") && localeIsUtf8()};
}
