// SPDX-License-Identifier: MIT
// Names of shared-memory buffers: /processdata.<module>_<object>_<instance>.<generation>
#ifndef BUFFERNAME_H
#define BUFFERNAME_H

#include "SourceName.h"

#include <QByteArray>

#include <optional>

/// Where the system keeps its POSIX shared-memory objects.
constexpr char sharedMemoryDirectory[] = "/dev/shm";

/// First bytes of all buffers' names, without leading slash.
constexpr char bufferNameBegin[] = "processdata.";

/// Ends the name of the small object beside each buffer that tells whether its publisher lives. No
/// generation ends so.
constexpr char lifeNameEnd[] = ".life";

/// Generations travel as JSON numbers: up to here they do so without loss.
constexpr quint64 maximumGeneration = (quint64(1) << 53) - 1;

/// Name of a source's buffers, without leading slash, up to and including the dot before the
/// generation.
///
/// Bytes other than letters, digits and "-" are written as "_xx". Different sources have different
/// names; one that the file system would refuse for its length ends in "~" and a hash.
QByteArray bufferNamePrefix(const SourceName &name);

/// What the names of all buffers of a module begin with; shorter for a module with a long name.
QByteArray bufferNameBeginOfModule(const QString &module);

/// Generation of a file with that prefix; nothing when the file's name is any other.
std::optional<quint64> generationOfFile(const QByteArray &fileName, const QByteArray &prefix);

/// Generation that a buffer's name ends in, whatever its source; nothing when it ends otherwise.
std::optional<quint64> generationOfName(const QByteArray &fileName);

/// Path of a shared-memory object; empty when its name (with leading slash) cannot be one.
QByteArray sharedMemoryPath(const QString &name);

#endif
