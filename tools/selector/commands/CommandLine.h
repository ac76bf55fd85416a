// SPDX-License-Identifier: MIT
// The command line of all subcommands.
#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "Report.h"

#include <QString>
#include <QStringList>

/// Options that only some commands take.
enum CommandOption {
    OptionFile = 1, ///< -f, --file
    OptionType = 2, ///< --type
    OptionProperty = 4, ///< --property
    OptionInterval = 8, ///< --interval
    OptionCount = 16, ///< --count
    OptionUntil = 32, ///< --until
    OptionTimestamps = 64, ///< --timestamps
    OptionChangesOnly = 128, ///< --changes-only
    OptionPlot = 256, ///< --plot
    OptionAgainst = 512, ///< --against
    OptionOutput = 1024, ///< -o, --output
    OptionDryRun = 2048, ///< --dry-run
    OptionVerify = 4096, ///< --verify
    OptionRollback = 8192, ///< --rollback
    OptionDoctor = 16384, ///< --clean, --yes, --report, --with-values
    OptionQuiet = 32768, ///< -q, --quiet
    OptionEscapes = 65536, ///< -e, --escapes
};

/// What the user asked for.
struct CommandLine
{
    QStringList arguments; ///< without the command's name
    QString file;
    QString type;
    QStringList properties;
    Format format = Format::Table;
    int interval = 200; ///< milliseconds
    int count = 0; ///< 0: no end
    int timeout = 0; ///< milliseconds; 0: not given
    QString against;
    QString output;
    QString until;
    bool hasAgainst = false;
    bool hasUntil = false;
    bool hasType = false;
    bool timestamps = false;
    bool changesOnly = false;
    bool plot = false;
    bool dryRun = false;
    bool verify = false;
    bool rollback = false;
    QString report;
    bool hasReport = false;
    bool clean = false;
    bool yes = false;
    bool withValues = false;
    bool quiet = false;
    bool escapes = false;
    bool noLegend = false;
    bool verbose = false;
    bool help = false;
};

/// @param arguments  what follows the command's name
/// @param options    sum of CommandOption
/// @param error      receives one sentence; left alone on success
bool parseCommandLine(const QStringList &arguments, int options, CommandLine &line, QString &error);

#endif
