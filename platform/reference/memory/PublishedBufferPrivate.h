// SPDX-License-Identifier: MIT
// What a publisher keeps of one buffer.
#ifndef PUBLISHEDBUFFERPRIVATE_H
#define PUBLISHEDBUFFERPRIVATE_H

#include "ForkedChild.h"
#include "ProcessDataDescription.h"
#include "PublishedLife.h"
#include "SharedMemoryMapping.h"
#include "Slot.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class PublishedBufferPrivate
{
public:
    /// A slot's content on its way in or out.
    struct Content
    {
        SlotHead head;
        QByteArray payload;
    };

    char *slot(int leaf) const { return memory->at(leaves.at(leaf).offset); }
    quint32 payloadSizeOf(int leaf) const;

    /// @returns false when a writer that ignores the lock keeps changing the slot
    bool read(int leaf, Content &content) const;

    /// Caller holds the writers' lock.
    void write(int leaf, const Content &content);

    /// Takes over the sequences as they are: what was written so far is not reported.
    void startDetection();

    QVector<LeafDescription> leaves;
    std::unique_ptr<SharedMemoryPrivate> memory;
    std::unique_ptr<PublishedLife> life;
    QString name; // as described
    QByteArray path; // of the file
    QVector<int> writableLeaves; // the only ones that clients write
    std::vector<quint32> seenSequences; // of each leaf, after the last write that is known
    std::vector<bool>
        clientWrote; // a client's write that an own one covered before it was reported
    const HomeProcess home; // a forked child must not touch its parent's buffer
    bool retired = false;
    mutable bool lockIsHeld = false; // longer than a writer may: it is not waited for again
};

#endif
