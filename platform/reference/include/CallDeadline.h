// SPDX-License-Identifier: MIT
// One time limit for all that a process asks of the bus.
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

#endif
