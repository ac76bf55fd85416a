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

QByteArray compactText(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2); // without the array's brackets
}

}

LeafBlock::LeafBlock(ProcessDataDescription description, QSharedPointer<SharedMemoryPrivate> memory)
    : description(std::move(description))
    , session(sessionOf(this->description))
    , sessionText(compactText(session))
    , memory(std::move(memory))
    , header(this->memory.isNull() ? nullptr : &this->memory->header())
    , leaves(allocateLeaves(this->description.leaves.size()))
{
    for (int i = 0; i < this->description.leaves.size(); ++i) {
        const LeafDescription &leaf = this->description.leaves.at(i);
        const bool readable = header != nullptr;
        new (leaves + i) ProcessDataLeaf({readable ? this->memory->at(leaf.offset) : nullptr, this,
                                          payloadSize(leaf.type, leaf.capacity), leaf.type,
                                          readable && leaf.type == ValueType::Float64});
    }
}

LeafBlock::~LeafBlock()
{
    std::destroy_n(leaves, description.leaves.size());
    std::allocator<ProcessDataLeaf>().deallocate(leaves, size_t(description.leaves.size()));
}
