// SPDX-License-Identifier: MIT
// Log category of the system services.
#include "SystemLog.h"

Q_LOGGING_CATEGORY(systemLog, "processdata.system")
