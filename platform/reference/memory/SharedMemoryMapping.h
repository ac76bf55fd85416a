// SPDX-License-Identifier: MIT
// One mapped buffer; unmapped when the last of manager and leaves lets go.
#ifndef SHAREDMEMORYMAPPING_H
#define SHAREDMEMORYMAPPING_H

#include "BufferLayout.h"
#include "BufferLife.h"
#include "MappingGuard.h"

#include <memory>
#include <utility>

/// The mapping that SharedMemory and leaves share. Immutable; the memory behind it is not.
class SharedMemoryPrivate
{
public:
    enum Access { ReadOnly, ReadWrite };

    /// Takes over a mapping of at least a header.
    SharedMemoryPrivate(void *base, size_t size, Access access);
    ~SharedMemoryPrivate();
    SharedMemoryPrivate(const SharedMemoryPrivate &) = delete;
    SharedMemoryPrivate &operator=(const SharedMemoryPrivate &) = delete;

    /// Lets the process survive that somebody cuts the file short: all bytes then read as zero, so
    /// that no lock is one. Called once, before others know the mapping.
    void guard() { mappingGuard = std::make_unique<MappingGuard>(base, size, isWritable()); }

    /// Takes over the record of the buffer's life. A client's mapping has one; called once, before
    /// others know the mapping.
    void watch(std::unique_ptr<LifeMapping> record) { lifeMapping = std::move(record); }

    /// Whether somebody has cut the file short. Needs guard().
    bool isCutShort() const;

    BufferHeader &header() const { return *static_cast<BufferHeader *>(base); }
    const LifeRecord &life() const { return lifeMapping->record(); }
    char *at(quint64 offset) const { return static_cast<char *>(base) + offset; }
    bool isWritable() const { return access == ReadWrite; }

private:
    void *const base;
    const size_t size;
    const Access access;
    std::unique_ptr<MappingGuard> mappingGuard;
    std::unique_ptr<LifeMapping> lifeMapping;
};

#endif
