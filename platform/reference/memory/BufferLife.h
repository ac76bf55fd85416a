// SPDX-License-Identifier: MIT
// Whether a publisher stands behind a buffer, told by the record beside it.
#ifndef BUFFERLIFE_H
#define BUFFERLIFE_H

#include "BufferFiles.h"
#include "LifeRecord.h"
#include "MappingGuard.h"
#include "ObjectFile.h"
#include "ProcessDataDescription.h"

#include <memory>
#include <optional>

/// Judges the record that belongs to a buffer's file; opens nothing of other owners.
///
/// @param bufferPath  of the buffer, which need not exist
/// @param ownerUid    whose record is believed
/// @param problem     receives one sentence unless it is Live, Retired or Dead
/// @returns also Unreadable; nothing when there is no record, or none that can be believed
std::optional<BufferFile::State> lifeOfBuffer(const QByteArray &bufferPath, quint32 ownerUid,
                                              QString &problem);

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
/// @param step   receives which check failed; Liveness when none did
/// @returns the mapping, also of a publisher that is gone; null when anything differs
/// Threads: any.
std::unique_ptr<LifeMapping> attachLife(const BufferDescription &buffer, QString &error,
                                        BufferInspection::Step &step);

#endif
