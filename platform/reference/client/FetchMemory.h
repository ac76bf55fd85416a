// SPDX-License-Identifier: MIT
// Which instances a connector was asked for, which of them its service still owes, and what it said
// of them last.
#ifndef FETCHMEMORY_H
#define FETCHMEMORY_H

#include "PreparedDescription.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>

#include <utility>

/// Shared by a connector and its pending replies, which may outlive it.
///
/// Threads: any.
class FetchMemory
{
public:
    /// Remembers that the instance was asked for.
    void noteAsked(const QString &instanceName)
    {
        const QMutexLocker lock(&mutex);
        if (!asked.contains(instanceName)) {
            asked += instanceName;
        }
    }

    /// Remembers that the service hangs and owes the instance.
    void noteMissed(const QString &instanceName)
    {
        const QMutexLocker lock(&mutex);
        if (!missed.contains(instanceName)) {
            missed += instanceName;
        }
    }

    void forgetMissed(const QString &instanceName)
    {
        const QMutexLocker lock(&mutex);
        missed.removeAll(instanceName);
    }

    QStringList takeMissed()
    {
        const QMutexLocker lock(&mutex);
        return std::exchange(missed, QStringList());
    }

    /// Keeps a description that the next fetch will very likely bring again.
    void expect(const QString &instanceName, const PreparedDescriptionPointer &description)
    {
        const QMutexLocker lock(&mutex);
        expected.insert(instanceName, description);
    }

    /// @returns null when there is none
    PreparedDescriptionPointer expectedOf(const QString &instanceName) const
    {
        const QMutexLocker lock(&mutex);
        return expected.value(instanceName);
    }

    void forgetExpected(const QString &instanceName)
    {
        const QMutexLocker lock(&mutex);
        expected.remove(instanceName);
    }

    bool wasAsked(const QString &instanceName) const
    {
        const QMutexLocker lock(&mutex);
        return asked.contains(instanceName);
    }

    QStringList allAsked() const
    {
        const QMutexLocker lock(&mutex);
        return asked;
    }

private:
    mutable QMutex mutex;
    QStringList asked;
    QStringList missed;
    QHash<QString, PreparedDescriptionPointer> expected; // by instance
};

#endif
