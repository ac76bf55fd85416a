// SPDX-License-Identifier: MIT
// Log category of everything that touches shared memory.
#ifndef MEMORYLOG_H
#define MEMORYLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(memoryLog)

#endif
