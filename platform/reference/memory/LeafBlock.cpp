// SPDX-License-Identifier: MIT
// All leaves of one description, side by side, with what they share.
#include "LeafBlock.h"

#include <memory>
#include <new>

namespace {

ProcessDataLeaf *allocateLeaves(int count)
{
    return std::allocator<ProcessDataLeaf>().allocate(size_t(count));
}

}

LeafBlock::LeafBlock(ProcessDataDescription description, QSharedPointer<SharedMemoryPrivate> memory)
    : description(std::move(description))
    , memory(std::move(memory))
    , leaves(allocateLeaves(this->description.leaves.size()))
{
    for (int i = 0; i < this->description.leaves.size(); ++i) {
        const LeafDescription &leaf = this->description.leaves.at(i);
        const bool readable = !this->memory.isNull();
        new (leaves + i) ProcessDataLeaf({readable ? this->memory->at(leaf.offset) : nullptr,
                                          readable ? &this->memory->header() : nullptr, leaf.type,
                                          payloadSize(leaf.type, leaf.capacity), &leaf, this});
    }
}

LeafBlock::~LeafBlock()
{
    std::destroy_n(leaves, description.leaves.size());
    std::allocator<ProcessDataLeaf>().deallocate(leaves, size_t(description.leaves.size()));
}
