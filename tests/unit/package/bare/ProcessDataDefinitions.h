// SPDX-License-Identifier: MIT
// Error types under names of the device's own.
#ifndef PROCESSDATADEFINITIONS_H
#define PROCESSDATADEFINITIONS_H

struct ProcessDataDefinitions
{
    enum class ErrorTypes { Fine, Stale, Faulty, Unobtained };
};

#endif
