// SPDX-License-Identifier: MIT
// How the reference platform's questions end, in the words of every platform.
#ifndef REFERENCERESULT_H
#define REFERENCERESULT_H

#include "BusQueryResult.h"
#include "ProcessDataAccess.h"

inline ProcessDataAccess::Result resultOf(BusQueryResult result)
{
    switch (result) {
    case BusQueryResult::Ok:
        return ProcessDataAccess::Result::Ok;
    case BusQueryResult::BusNotReachable:
        return ProcessDataAccess::Result::BusNotReachable;
    case BusQueryResult::ServiceMissing:
        return ProcessDataAccess::Result::ServiceMissing;
    case BusQueryResult::ServiceFailed:
        return ProcessDataAccess::Result::ServiceFailed;
    case BusQueryResult::TimedOut:
        return ProcessDataAccess::Result::TimedOut;
    case BusQueryResult::Denied:
        return ProcessDataAccess::Result::Denied;
    }
    return ProcessDataAccess::Result::ServiceFailed;
}

#endif
