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

#endif
