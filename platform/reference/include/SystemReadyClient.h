// SPDX-License-Identifier: MIT
// Asks the system status manager whether the system has finished starting up.
#ifndef SYSTEMREADYCLIENT_H
#define SYSTEMREADYCLIENT_H

#include "BusQueryResult.h"
#include "ProcessDataPlatformExport.h"

#include <QString>

/// Fetches whether the system is ready and waits for it, at most for the platform's time limit.
///
/// @param ready         receives it; left alone on failure
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
/// Threads: any. Runs no event loop.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchSystemReady(bool &ready, QString &errorMessage);

#endif
