// SPDX-License-Identifier: MIT
// A leaf's value, looked into.
#ifndef LEAFVALUE_H
#define LEAFVALUE_H

#include "ProcessDataAccess.h"

/// What a platform's value says at one time.
struct LeafValue
{
    LeafValue() = default;
    LeafValue(const ProcessValue &read) // implicit: what the library reads is what tools show
        : value(ProcessDataAccess::valueOf(read))
        , errorType(ProcessDataAccess::errorTypeOf(read))
        , timestamp(ProcessDataAccess::timestampOf(read))
    {
    }

    bool isGood() const { return errorType == ProcessDataAccess::ErrorType::NoError; }
    bool isMissing() const { return errorType == ProcessDataAccess::ErrorType::NoValue; }

    QVariant value; ///< invalid when there is none
    ProcessDataAccess::ErrorType errorType = ProcessDataAccess::ErrorType::NoValue;
    qint64 timestamp = 0; ///< nanoseconds since 1970-01-01 00:00 UTC; 0: none
};

#endif
