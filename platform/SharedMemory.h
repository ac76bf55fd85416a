// SPDX-License-Identifier: MIT
// A shared-memory segment as a member of the process-data manager.
#ifndef SHAREDMEMORY_H
#define SHAREDMEMORY_H

#include "ProcessDataPlatformExport.h"

#include <QSharedPointer>

class SharedMemoryPrivate;

/// Holds the attachment to one shared-memory segment.
///
/// The library only destroys it, as part of ProcessDataManager. Leaves may share the attachment:
/// the segment is let go when the last of them and this object are gone.
class PROCESSDATAPLATFORM_EXPORT SharedMemory
{
public:
    SharedMemory();
    ~SharedMemory();
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

private:
    friend class ProcessDataManager;
    QSharedPointer<SharedMemoryPrivate> d;
};

#endif
