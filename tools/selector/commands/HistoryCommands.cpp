// SPDX-License-Identifier: MIT
// The commands of builds with a history.
#include "Command.h"

QVector<Command> historyCommands()
{
    return {historyCommand(), recordCommand()};
}
