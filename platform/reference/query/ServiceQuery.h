// SPDX-License-Identifier: MIT
// A blocking question to a service, as tools ask it.
#ifndef SERVICEQUERY_H
#define SERVICEQUERY_H

#include "BusQueryResult.h"

#include <QDBusMessage>
#include <QString>
#include <QVariant>

/// Sends a call on the shared client connection and waits for the answer.
///
/// @param type          D-Bus signature that the answer must have
/// @param value         receives its only argument; left alone on failure
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
BusQueryResult askService(const QDBusMessage &call, const char *type, QVariant &value,
                          QString &errorMessage);

#endif
