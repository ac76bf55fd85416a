// SPDX-License-Identifier: MIT
// Helps and manual pages, with the options as the commands list them.
#ifndef HELP_H
#define HELP_H

#include "Command.h"

/// What --help prints without a command.
QString overview();

/// The commands, one a line.
QString commandList();

/// What --help prints behind a command.
QString helpOf(const Command &command);

/// A whole manual page: a command's gets its name, and a list takes the place of each line that
/// says .\" OPTIONS or .\" COMMANDS.
///
/// @param text     what is written by hand
/// @param command  null for the page of selector itself, which has the common options
QString manualPage(QString text, const Command *command);

#endif
