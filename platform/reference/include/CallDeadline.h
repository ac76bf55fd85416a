// SPDX-License-Identifier: MIT
// Time limits for what a process asks of the bus.
#ifndef CALLDEADLINE_H
#define CALLDEADLINE_H

#include "ProcessDataPlatformExport.h"

/// From now on all blocking calls of this process together may take so long, beside the limit of
/// each. What is asked after that fails as not answered in time. For programs that do one thing and
/// end; a later call replaces an earlier one.
///
/// @param milliseconds  above 0
/// Threads: any.
PROCESSDATAPLATFORM_EXPORT void setCallDeadline(int milliseconds);

/// From now on each blocking call of this process may take so long, in place of what
/// PROCESSDATA_DBUS_TIMEOUT_MS says; a later call replaces an earlier one.
///
/// @param milliseconds  0: what the environment says again
/// Threads: any.
PROCESSDATAPLATFORM_EXPORT void setCallTimeLimit(int milliseconds);

#endif
