// SPDX-License-Identifier: MIT
// Values in shared memory under one lock.
#include "LockedPeers.h"

#include <boost/interprocess/sync/scoped_lock.hpp>

#include <algorithm>

#include <unistd.h>

namespace ipc = boost::interprocess;

QtSharedMemoryPeer::QtSharedMemoryPeer(int count)
    : memory(QStringLiteral("benchmark-peers-%1").arg(getpid()))
    , count(count)
{
    if (!memory.create(int(sizeof(LockedValue)) * count)) {
        qFatal("no shared memory: %s", qPrintable(memory.errorString()));
    }
    std::fill_n(static_cast<LockedValue *>(memory.data()), count, LockedValue());
}

double QtSharedMemoryPeer::copyOne(int position)
{
    memory.lock();
    const LockedValue copy = values()[position];
    memory.unlock();
    return copy.value;
}

QVector<LockedValue> QtSharedMemoryPeer::copyAll()
{
    QVector<LockedValue> copy(count);
    memory.lock();
    std::copy_n(values(), count, copy.begin());
    memory.unlock();
    return copy;
}

QVector<ProcessValue> QtSharedMemoryPeer::processValues()
{
    memory.lock();
    QVector<ProcessValue> result = processValuesOf(values(), count);
    memory.unlock();
    return result;
}

BoostPeer::BoostPeer(int count)
    : name("benchmark-peers-boost-" + std::to_string(getpid()))
    , memory(ipc::create_only, name.c_str(), sizeof(LockedValue) * size_t(count) + 65536)
    , mutex(memory.construct<ipc::interprocess_mutex>("mutex")())
    , values(memory.construct<LockedValue>("values")[size_t(count)]())
    , count(count)
{
}

BoostPeer::~BoostPeer()
{
    ipc::shared_memory_object::remove(name.c_str());
}

QVector<ProcessValue> BoostPeer::processValues()
{
    const ipc::scoped_lock<ipc::interprocess_mutex> lock(*mutex);
    return processValuesOf(values, count);
}
