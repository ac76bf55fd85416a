// SPDX-License-Identifier: MIT
// Buffers that dead publishers of a source left behind.
#ifndef LEFTOVERS_H
#define LEFTOVERS_H

#include <QByteArray>

/// Removes the buffers of a source whose publishers are proved dead.
///
/// Only files of this process's user that are process-data buffers, retired or with a liveness lock
/// whose owner died, are removed; everything else under such a name is left alone.
///
/// @param prefix  see bufferNamePrefix
/// @returns the highest generation among this user's files of the source, removed ones too; 0 when
/// none
quint64 removeLeftovers(const QByteArray &prefix);

#endif
