// SPDX-License-Identifier: MIT
// The command line of all subcommands.
#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "Option.h"
#include "Report.h"

#include <QMap>

/// What the user asked for.
struct CommandLine
{
    QStringList arguments; ///< without the command's name
    QMap<QString, QStringList> given; ///< values of each option, by its name; none of a plain one
    Format format = Format::Table;

    bool has(const char *option) const;
    QStringList texts(const char *option) const;
    QString text(const char *option) const; ///< the last one; empty when not given
    int number(const char *option, int otherwise = 0) const; ///< of seconds the milliseconds
};

/// @param arguments  what follows the command's name
/// @param options    those of the command; the common ones are taken too
/// @param error      receives one sentence; left alone on success
bool parseCommandLine(const QStringList &arguments, const QVector<Option> &options,
                      CommandLine &line, QString &error);

/// Whether an argument such as -5 is a value, though it begins as an option does.
bool isNumber(const QString &argument);

#endif
