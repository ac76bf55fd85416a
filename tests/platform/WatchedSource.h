// SPDX-License-Identifier: MIT
// A source whose loss its readers report.
#ifndef WATCHEDSOURCE_H
#define WATCHEDSOURCE_H

#include "ProcessDataDescription.h"
#include "SourceWatch.h"

inline QSharedPointer<SourceWatch> watchedSource()
{
    ProcessDataDescription description;
    description.source = {"Pump", "Controller", "1"};
    description.buffer = BufferDescription{"/processdata.Pump_Controller_1.7", 7, 0, 0};
    return QSharedPointer<SourceWatch>::create(description);
}

#endif
