// SPDX-License-Identifier: MIT
// Builds without a history have none of its commands.
#include "Command.h"

QVector<Command> historyCommands()
{
    return {};
}
