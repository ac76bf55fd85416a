// SPDX-License-Identifier: MIT
// Log category of the system services.
#ifndef SYSTEMLOG_H
#define SYSTEMLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(systemLog)

#endif
