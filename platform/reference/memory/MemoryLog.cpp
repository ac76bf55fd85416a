// SPDX-License-Identifier: MIT
// Log category of everything that touches shared memory.
#include "MemoryLog.h"

Q_LOGGING_CATEGORY(memoryLog, "processdata.memory")
