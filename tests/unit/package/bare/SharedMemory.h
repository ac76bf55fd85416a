// SPDX-License-Identifier: MIT
// A segment that can only be destroyed from outside.
#ifndef SHAREDMEMORY_H
#define SHAREDMEMORY_H

class SharedMemory
{
public:
    ~SharedMemory();

private:
    friend class ProcessDataManager;
    SharedMemory();
};

#endif
