// SPDX-License-Identifier: MIT
// Files that are named on the command line; - stands for standard input.
#ifndef INPUTFILE_H
#define INPUTFILE_H

#include <QString>

class QFile;

bool isStandardInput(const QString &name);

/// Opens a file, which has no name yet, for reading.
///
/// @param error  receives the file's name and the system's reason on failure
bool openInput(const QString &name, QFile &file, QString &error);

/// Reads a whole file of text, which must be UTF-8; also a pipe: to its end, at most 64 MiB.
///
/// @param error  receives the file's name and what is wrong: the system's reason, or the line that
///               is not UTF-8
bool readTextFile(const QString &name, QString &text, QString &error);

/// A line without the blanks at both ends. Spaces other than ASCII's belong to a value.
QString withoutBlanks(const QString &line);

#endif
