// SPDX-License-Identifier: MIT
// The subcommands.
#ifndef COMMAND_H
#define COMMAND_H

#include "CommandLine.h"
#include "Console.h"
#include "ExitCode.h"

#include <limits>

class Catalog;

/// What the arguments of a command are, for shells.
struct Arguments
{
    enum Kind { Words, Url, UrlAndValue, FileAndUrls, Place, Module, File };
    static constexpr int many = std::numeric_limits<int>::max();

    Kind kind = Words;
    int most = 0;
    const char *words = ""; ///< of kind Words, with blanks between
};

struct Command
{
    QString name;
    QString summary; ///< one line
    const char *usage; ///< for the help: usage, and what it does
    QVector<Option> options; ///< of its own, in the order of the help
    const char *ending; ///< for the help: what is to be added, and an example
    Arguments takes;

    /// @param usage  receives what is wrong when the result is ExitUsage
    /// @returns an exit code
    int (*run)(const CommandLine &line, const Console &console, QString &usage);
};

/// All commands in the order in which the help lists them.
const QVector<Command> &commands();

/// Null for an unknown name.
const Command *findCommand(const QString &name);

/// The name of each, in the same order.
QStringList commandNames();

/// Where the name of the command stands among the arguments of the program: options, and values of
/// those that take one, may stand before it. -1 when there is none.
int commandPosition(const QStringList &arguments);

/// Each in a file of its own.
Command modulesCommand();
Command browseCommand();
Command readCommand();
Command writeCommand();
Command watchCommand();
Command propertiesCommand();
Command explainCommand();
Command doctorCommand();
Command checkCommand();
Command snapshotCommand();
Command diffCommand();
Command applyCommand();
Command completeCommand();
Command historyCommand();
Command recordCommand();

/// Those of the history; none in a build without it.
QVector<Command> historyCommands();

/// Asks for the modules; prints the reason when they cannot be had, and a note when there is no
/// registry to name them.
///
/// @param exitCode  receives what a failure means for a script
bool askModules(Catalog &catalog, const Console &console, ExitCode &exitCode);

/// Whether the bus can be reached; prints the reason when not.
bool busIsReachable(const Console &console);

#endif
