// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#ifndef BUSERRORS_H
#define BUSERRORS_H

#include <QDBusMessage>

/// Threads: any.
namespace BusErrors {

/// No answer came in time, or the callee died with the call.
bool isTimeout(const QDBusMessage &answer);

/// Nobody owns the service's name.
bool isServiceMissing(const QDBusMessage &answer);

/// The bus or the service does not permit the call.
bool isDenied(const QDBusMessage &answer);

/// The connection to the bus was lost.
bool isDisconnected(const QDBusMessage &answer);
}

#endif
