// SPDX-License-Identifier: MIT
// Log category of everything that talks to the bus.
#ifndef BUSLOG_H
#define BUSLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(busLog)

#endif
