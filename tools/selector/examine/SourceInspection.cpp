// SPDX-License-Identifier: MIT
// A source's description and what is found in the buffer that it names.
#include "SourceInspection.h"

#include "InstanceListClient.h"

BusQueryResult inspectSource(const QString &module, const QString &object, const QString &instance,
                             SourceInspection &source, QString &error)
{
    constexpr int attempts = 3;
    for (int i = 0; i < attempts; ++i) {
        QString description;
        const BusQueryResult result
            = fetchDescription(module, object, instance, description, error);
        if (result != BusQueryResult::Ok || (i > 0 && description == source.description)) {
            return result;
        }
        source.description = description;
        source.buffer = inspectBuffer(description);
        if (source.buffer.end == BufferInspection::Complete) {
            break;
        }
    }
    return BusQueryResult::Ok;
}
