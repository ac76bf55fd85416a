// SPDX-License-Identifier: MIT
// All leaves of one description, side by side, with what they share.
#ifndef LEAFBLOCK_H
#define LEAFBLOCK_H

#include "ProcessDataDescription.h"
#include "ProcessDataLeaf.h"
#include "SharedMemoryMapping.h"

#include <QByteArray>
#include <QJsonValue>
#include <QSharedPointer>

/// Owns leaves, description and mapping of one tree. Root and leaf pointers share it: it lives
/// until the last of them is gone, and holds none of them itself.
struct LeafBlock
{
    /// @param memory  null when there is no buffer: the leaves then cannot be read
    LeafBlock(ProcessDataDescription description, QSharedPointer<SharedMemoryPrivate> memory);
    ~LeafBlock();
    LeafBlock(const LeafBlock &) = delete;
    LeafBlock &operator=(const LeafBlock &) = delete;

    const ProcessDataDescription description;
    const QJsonValue session; // tells clients of a restarted publisher
    const QByteArray sessionText; // the same as it is rendered
    const QSharedPointer<SharedMemoryPrivate> memory;
    const BufferHeader *const header; // of the memory; null without one
    ProcessDataLeaf *const leaves; // one for each of the description, in its order
};

#endif
