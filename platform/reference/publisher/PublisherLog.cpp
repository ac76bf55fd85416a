// SPDX-License-Identifier: MIT
// Log category of publishers.
#include "PublisherLog.h"

Q_LOGGING_CATEGORY(publisherLog, "processdata.publisher")
