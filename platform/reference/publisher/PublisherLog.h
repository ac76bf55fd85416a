// SPDX-License-Identifier: MIT
// Log category of publishers.
#ifndef PUBLISHERLOG_H
#define PUBLISHERLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(publisherLog)

#endif
