// SPDX-License-Identifier: MIT
// A source connection to one scripted source, with all that it warns of.
#ifndef SCRIPTEDSOURCEHANDLER_H
#define SCRIPTEDSOURCEHANDLER_H

#include "SelectorSharedMemoryHandler.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QScopedPointer>

/// The source has the leaf inlet. No connection is made before make().
struct ScriptedSourceHandler
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    QScopedPointer<SelectorSharedMemoryHandler> handler;
    WarningLog warnings;

    SelectorSharedMemoryHandler &make()
    {
        handler.reset(
            new SelectorSharedMemoryHandler("the key", "boiler", "sensors", "1", nullptr));
        return *handler;
    }
    SelectorSharedMemoryHandler &makeAttached()
    {
        make().attachToProcessBuffer();
        platform.forgetCalls();
        warnings.clear();
        return *handler;
    }
};

#endif
