// SPDX-License-Identifier: MIT
// Private members of the handlers, for states that no client can bring about.
#ifndef INTERNALS_H
#define INTERNALS_H

#include "ClassForm.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlHandler.h"

#define OPEN_MEMBER(Class, member)                                                                 \
    struct Class##_##member                                                                        \
    {                                                                                              \
        friend auto memberOf(Class##_##member);                                                    \
    };                                                                                             \
    template struct Opens<Class##_##member, &Class::member>;

OPEN_MEMBER(SelectorHandlerProcessValue, statusManagerConnector)
OPEN_MEMBER(SelectorHandlerProcessValue, sharedMemoryHandlers)
OPEN_MEMBER(SelectorHandlerProcessValue, processDataInformationList)
OPEN_MEMBER(SelectorHandlerProcessValue, mutex)
OPEN_MEMBER(SelectorHandlerProcessValue, getValuesInternal)
OPEN_MEMBER(SelectorHandlerProcessValue, setNewSharedMemoryData)

inline auto &sourcesOf(SelectorHandlerProcessValue &handler)
{
    return handler.*memberOf(SelectorHandlerProcessValue_sharedMemoryHandlers());
}

inline auto &recordsOf(SelectorHandlerProcessValue &handler)
{
    return handler.*memberOf(SelectorHandlerProcessValue_processDataInformationList());
}

/// The working read, whose result no client sees.
inline bool readInternally(SelectorHandlerProcessValue &handler, int startIndex, int count,
                           QVector<ProcessValue> &values)
{
    return (handler.*memberOf(SelectorHandlerProcessValue_getValuesInternal()))(startIndex, count,
                                                                                values);
}

/// Whether nobody holds the handler's lock.
inline bool isLockFree(SelectorHandlerProcessValue &handler)
{
    QMutex &mutex = handler.*memberOf(SelectorHandlerProcessValue_mutex());
    if (!mutex.tryLock()) {
        return false;
    }
    mutex.unlock();
    return true;
}

#endif
