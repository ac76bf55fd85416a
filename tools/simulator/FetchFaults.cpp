// SPDX-License-Identifier: MIT
// Keeps what is wrong with the next fetches.
#include "FetchFaults.h"

#include <QMutexLocker>

FetchFaults &FetchFaults::instance()
{
    static FetchFaults faults;
    return faults;
}

void FetchFaults::set(const QString &source, const FetchFault &fault)
{
    const QMutexLocker lock(&mutex);
    if (fault.kind == FetchFault::None) {
        faults.remove(source);
    } else {
        faults.insert(source, fault);
    }
}

FetchFault FetchFaults::take(const QString &source)
{
    const QMutexLocker lock(&mutex);
    const auto found = faults.find(source);
    if (found == faults.end()) {
        return {};
    }
    FetchFault fault = *found;
    if (found->count > 0 && --found->count == 0) {
        faults.erase(found);
    }
    return fault;
}
