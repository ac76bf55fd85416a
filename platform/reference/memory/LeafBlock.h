// SPDX-License-Identifier: MIT
// All leaves of one description, side by side, with what they share.
#ifndef LEAFBLOCK_H
#define LEAFBLOCK_H

#include "PreparedDescription.h"
#include "ProcessDataLeaf.h"
#include "SharedMemoryMapping.h"
#include "SourceWatch.h"

#include <QBitArray>
#include <QByteArray>
#include <QJsonValue>
#include <QSharedPointer>

/// Owns leaves, description and mapping of one tree. Root and leaf pointers share it: it lives
/// until the last of them is gone, and holds none of them itself. A leaf is made when it is first
/// looked up: clients of large sources mostly want few.
struct LeafBlock
{
    /// @param prepared  with its content
    /// @param memory    null when there is no buffer: the leaves then cannot be read
    LeafBlock(PreparedDescriptionPointer prepared, QSharedPointer<SharedMemoryPrivate> memory);
    ~LeafBlock();
    LeafBlock(const LeafBlock &) = delete;
    LeafBlock &operator=(const LeafBlock &) = delete;

    /// The leaf at a position of the description. Not in two threads at a time.
    ProcessDataLeaf *leafAt(int position);

    const PreparedDescriptionPointer prepared;
    const ProcessDataDescription &description; // the prepared one
    const QJsonValue session; // tells clients of a restarted publisher
    const QByteArray sessionText; // the same as it is rendered
    const QSharedPointer<SharedMemoryPrivate> memory;
    const LifeRecord *const life; // of the memory; null without one
    const LifeMark mark; // of a publisher that lives and has changed nothing since the description
    const QSharedPointer<SourceWatch> watch;
    ProcessDataLeaf *const leaves; // room for one for each of the description, in its order

private:
    QBitArray made; // which of them are there
};

#endif
