// SPDX-License-Identifier: MIT
// Buffers that dead publishers of a source left behind.
#ifndef LEFTOVERS_H
#define LEFTOVERS_H

#include <QByteArray>

/// Removes the buffers of a source whose publishers are proved dead, and the records that prove it.
///
/// Believes only records of this process's user; what else has such a name is left alone and not
/// opened. What a buffer holds does not matter. Looks at a bounded number of files.
///
/// @param prefix  see bufferNamePrefix
void removeLeftovers(const QByteArray &prefix);

#endif
