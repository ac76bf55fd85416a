// SPDX-License-Identifier: MIT
// Error types of process values.
#ifndef PROCESSDATADEFINITIONS_H
#define PROCESSDATADEFINITIONS_H

#include "ProcessDataPlatformExport.h"

/// Constants shared by everything that handles process values.
class PROCESSDATAPLATFORM_EXPORT ProcessDataDefinitions
{
public:
    /// How far a process value can be trusted. The numbers are stored in shared memory.
    ///
    /// An implementer may add enumerators; the value 3 must exist and mean that no value was
    /// obtained.
    enum ErrorTypes {
        NoError = 0, ///< current value of a running publisher
        NotInitialized = 1, ///< never published since the buffer was made
        SourceLost = 2, ///< the publisher is gone; the value is its last
        NoValue = 3, ///< no value was obtained
        DeviceFault = 4, ///< the publisher reports a fault of the device behind the value
        OutOfRange = 5, ///< the publisher reports a value outside the device's range
    };
};

#endif
