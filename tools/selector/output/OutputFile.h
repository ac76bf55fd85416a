// SPDX-License-Identifier: MIT
// Files that a command writes.
#ifndef OUTPUTFILE_H
#define OUTPUTFILE_H

#include <QByteArray>
#include <QString>

/// Writes a file as a whole: it is there with all of its content, or stays as it was. What is not a
/// regular file, such as a device or a named pipe, is written to and never replaced.
///
/// @param error  receives the system's reason on failure
bool writeWholeFile(const QString &name, const QByteArray &content, QString &error);

#endif
