// SPDX-License-Identifier: MIT
// Values in shared memory under one lock.
#ifndef LOCKEDPEERS_H
#define LOCKEDPEERS_H

#include "ProcessValue.h"

#include <QSharedMemory>
#include <QVector>

#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/interprocess/sync/interprocess_mutex.hpp>

#include <string>

/// What one value takes in shared memory when a lock guards all of them.
struct LockedValue
{
    double value = 0;
    qint64 timestamp = 0;
    qint64 errorType = 0;
};

inline QVector<ProcessValue> processValuesOf(const LockedValue *locked, int count)
{
    QVector<ProcessValue> values;
    values.reserve(count);
    for (int i = 0; i < count; ++i) {
        values.append(ProcessValue(QVariant(locked[i].value),
                                   ProcessDataDefinitions::ErrorTypes(locked[i].errorType),
                                   locked[i].timestamp));
    }
    return values;
}

/// Qt's shared memory, whose lock is a semaphore of the system.
class QtSharedMemoryPeer
{
public:
    explicit QtSharedMemoryPeer(int count);
    double copyOne(int position);
    QVector<LockedValue> copyAll();
    QVector<ProcessValue> processValues();

private:
    const LockedValue *values() const
    {
        return static_cast<const LockedValue *>(memory.constData());
    }

    QSharedMemory memory;
    const int count;
};

/// Boost.Interprocess with its mutex in the memory.
class BoostPeer
{
public:
    explicit BoostPeer(int count);
    ~BoostPeer();
    BoostPeer(const BoostPeer &) = delete;
    BoostPeer &operator=(const BoostPeer &) = delete;

    QVector<ProcessValue> processValues();

private:
    const std::string name;
    boost::interprocess::managed_shared_memory memory;
    boost::interprocess::interprocess_mutex *mutex;
    const LockedValue *values;
    const int count;
};

#endif
