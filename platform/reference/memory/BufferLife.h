// SPDX-License-Identifier: MIT
// Whether a publisher stands behind a buffer, told by the record beside it.
#ifndef BUFFERLIFE_H
#define BUFFERLIFE_H

#include "LifeRecord.h"
#include "MappingGuard.h"
#include "ObjectFile.h"
#include "ProcessDataDescription.h"

#include <memory>

/// What the record beside a buffer says.
enum class BufferLife {
    Unknown, ///< there is no record, or none that can be believed
    Unreadable, ///< this process may not read it
    Live, ///< the buffer's publisher runs
    Retired, ///< its publisher has given it up
    Dead, ///< its publisher died: the kernel has marked the lock, or nobody holds it
};

/// Judges the record that belongs to a buffer's file; opens nothing of other owners.
///
/// @param bufferPath  of the buffer, which need not exist
/// @param ownerUid    whose record is believed
/// @param problem     receives why, when it is Unknown or Unreadable: one sentence
BufferLife lifeOfBuffer(const QByteArray &bufferPath, quint32 ownerUid, QString &problem);

/// Whether the file is proved to be of no use to anybody: Retired and Dead.
inline bool isAbandoned(BufferLife life)
{
    return life == BufferLife::Retired || life == BufferLife::Dead;
}

/// A record that is mapped for reading. Threads: any.
class LifeMapping
{
public:
    explicit LifeMapping(void *base)
        : base(base)
        , guard(std::make_unique<MappingGuard>(base, sizeof(LifeRecord), false))
    {
    }
    ~LifeMapping();
    LifeMapping(const LifeMapping &) = delete;
    LifeMapping &operator=(const LifeMapping &) = delete;

    const LifeRecord &record() const { return *static_cast<const LifeRecord *>(base); }

private:
    void *const base;
    std::unique_ptr<MappingGuard> guard;
};

/// Opens, checks and maps the record of the buffer that a description names.
///
/// @param error  receives one sentence
/// @param step   receives which check failed; Mapped when none did
/// @returns the mapping, also of a publisher that is gone; null when anything differs
/// Threads: any.
std::unique_ptr<LifeMapping> attachLife(const BufferDescription &buffer, QString &error,
                                        AttachStep &step);

#endif
