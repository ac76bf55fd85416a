// SPDX-License-Identifier: MIT
// A shared-memory segment as a member of the process-data manager.
#include "SharedMemory.h"

#include "SharedMemoryMapping.h"

#include <sys/mman.h>

SharedMemory::SharedMemory() = default;

SharedMemory::~SharedMemory() = default;

SharedMemoryPrivate::SharedMemoryPrivate(void *base, size_t size, Access access)
    : base(base)
    , size(size)
    , access(access)
{
}

SharedMemoryPrivate::~SharedMemoryPrivate()
{
    const bool lost = mappingGuard != nullptr && mappingGuard->isLost();
    mappingGuard.reset(); // first: the addresses may be another mapping's at once
    if (!lost) {
        munmap(base, size);
    }
}

bool SharedMemoryPrivate::isCutShort() const
{
    // The guard hears of it at an access, so there must be one.
    __atomic_load_n(&header().layoutVersion, __ATOMIC_RELAXED);
    return mappingGuard->isLost();
}
