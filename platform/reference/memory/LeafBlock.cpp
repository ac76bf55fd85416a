// SPDX-License-Identifier: MIT
// All leaves of one description, side by side, with what they share.
#include "LeafBlock.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <memory>
#include <new>

namespace {

ProcessDataLeaf *allocateLeaves(int count)
{
    return std::allocator<ProcessDataLeaf>().allocate(size_t(count));
}

// Older descriptions name no session.
QJsonValue sessionOf(const ProcessDataDescription &description)
{
    const quint64 generation = description.buffer ? description.buffer->generation : 0;
    return double(description.session != 0 ? description.session : generation);
}

// A description that names no revision is taken for the one that stands now.
LifeMark markOf(const ProcessDataDescription &description, const LifeRecord *life)
{
    const quint32 revision = life != nullptr ? bufferRevision(*life) : 0;
    return {BufferActive,
            description.buffer ? description.buffer->revision.value_or(revision) : revision};
}

QByteArray compactText(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2); // without the array's brackets
}

}

LeafBlock::LeafBlock(PreparedDescriptionPointer prepared,
                     QSharedPointer<SharedMemoryPrivate> memory)
    : prepared(std::move(prepared))
    , description(*this->prepared->content)
    , session(sessionOf(description))
    , sessionText(compactText(session))
    , memory(std::move(memory))
    , life(this->memory.isNull() ? nullptr : &this->memory->life())
    , mark(markOf(description, life))
    , watch(QSharedPointer<SourceWatch>::create(description, this->prepared->token))
    , leaves(allocateLeaves(description.leaves.size()))
    , made(description.leaves.size())
{
}

LeafBlock::~LeafBlock()
{
    watch->end();
    for (int i = 0; i < made.size(); ++i) {
        if (made.testBit(i)) {
            std::destroy_at(leaves + i);
        }
    }
    std::allocator<ProcessDataLeaf>().deallocate(leaves, size_t(description.leaves.size()));
}

ProcessDataLeaf *LeafBlock::leafAt(int position)
{
    if (!made.testBit(position)) {
        const LeafDescription &leaf = description.leaves.at(position);
        const bool readable = life != nullptr;
        new (leaves + position) ProcessDataLeaf({readable ? memory->at(leaf.offset) : nullptr, this,
                                                 payloadSize(leaf.type, leaf.capacity), leaf.type,
                                                 readable && leaf.type == ValueType::Float64});
        made.setBit(position);
    }
    return leaves + position;
}
