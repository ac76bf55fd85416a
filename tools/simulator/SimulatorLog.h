// SPDX-License-Identifier: MIT
// The simulator's log category.
#ifndef SIMULATORLOG_H
#define SIMULATORLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(simulator)

#endif
