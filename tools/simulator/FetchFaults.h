// SPDX-License-Identifier: MIT
// How fetches of descriptions are answered, unless honestly.
#ifndef FETCHFAULTS_H
#define FETCHFAULTS_H

#include <QHash>
#include <QMutex>
#include <QString>

struct FetchFault
{
    enum Kind { None, Late, Never, Error, Text };

    Kind kind = None;
    int delay = 0; ///< milliseconds
    QString error; ///< D-Bus name
    QString text; ///< of the error, or in place of the description
    int count = -1; ///< fetches that it is for; -1: all
};

/// The faults of the whole process. Threads: any; fetches are answered in the publishers' one.
class FetchFaults
{
public:
    static FetchFaults &instance();

    /// @param source  module/object/instance
    void set(const QString &source, const FetchFault &fault);
    /// The fault of the fetch that is just being answered.
    FetchFault take(const QString &source);

private:
    FetchFaults() = default;

    QMutex mutex;
    QHash<QString, FetchFault> faults;
};

#endif
