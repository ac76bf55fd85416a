// SPDX-License-Identifier: MIT
// Asks the system information manager for the registered providers.
#ifndef PROVIDERLISTCLIENT_H
#define PROVIDERLISTCLIENT_H

#include "BusQueryResult.h"
#include "ProcessDataPlatformExport.h"

#include <QString>

/// Fetches the list of registered providers and waits for it, at most for the platform's time
/// limit.
///
/// @param json          receives the JSON text of the list; left alone on failure
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
/// @returns how it ended
/// Threads: any. Runs no event loop.
PROCESSDATAPLATFORM_EXPORT BusQueryResult fetchRegisteredProviderList(QString &json,
                                                                      QString &errorMessage);

#endif
