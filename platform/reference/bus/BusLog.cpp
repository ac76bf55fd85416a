// SPDX-License-Identifier: MIT
// Log category of everything that talks to the bus.
#include "BusLog.h"

Q_LOGGING_CATEGORY(busLog, "processdata.bus")
