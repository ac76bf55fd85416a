// SPDX-License-Identifier: MIT
// Makes files in shared memory that get their name when they are complete.
#ifndef NAMELESSFILE_H
#define NAMELESSFILE_H

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// Makes a file without a name, with all its pages: whoever is killed before it is complete leaves
/// nothing behind, nobody else sees it before, and a full file system is an error here and no SIGBUS
/// at the first write.
///
/// @param error  receives one sentence
/// @returns its descriptor; -1 on failure
int makeNamelessFile(mode_t mode, quint64 size, QString &error);

/// Maps all of it for reading and writing; null on failure.
void *mapNamelessFile(int descriptor, quint64 size, QString &error);

/// Gives it its name, provided that the name is free.
///
/// @returns 0 or an errno value: EEXIST when it is taken
int giveName(int descriptor, const QByteArray &path);

#endif
