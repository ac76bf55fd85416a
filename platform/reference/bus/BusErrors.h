// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#ifndef BUSERRORS_H
#define BUSERRORS_H

#include "WireMessage.h"

#include <QDBusMessage>
#include <QString>

/// Threads: any.
namespace BusErrors {

/// No answer came in time, or the callee died with the call.
bool isTimeout(const QDBusMessage &answer);

/// The service, or the bus, has too much to do: worth another try.
bool isRefusedForNow(const QDBusMessage &answer);

/// Nobody owns the service's name.
bool isServiceMissing(const QDBusMessage &answer);

/// The bus or the service does not permit the call.
bool isDenied(const QDBusMessage &answer);

/// The connection to the bus was lost.
bool isDisconnected(const QDBusMessage &answer);

/// Why a call failed, and the error's name in parentheses. What the bus library and the bus daemon
/// explain at length is said in one sentence of ours; what a service says is left as it is.
QString text(const QDBusMessage &answer);

/// The same for an answer to a service's own call; null when the connection was lost.
QString text(const WireMessage &answer);

/// The same.
///
/// @param name   of the error
/// @param given  what the message says
QString text(const QString &name, const QString &given);
}

#endif
