// SPDX-License-Identifier: MIT
// What a bus daemon must hear from a connection that QtDBus opened without saying it.
#ifndef BUSGREETING_H
#define BUSGREETING_H

#include "ConnectionHooks.h"

#include <QDBusConnection>
#include <QString>

/// Introduces a connection to the bus daemon and waits for the answer, at most for the platform's
/// time limit. Nothing else may be sent before.
///
/// Not QDBusConnection::connectToBus(address): QtDBus 5.15 lets go of a connection whose greeting
/// is refused without closing it, and libdbus ends a process that does so. A bus daemon refuses
/// the greeting when a user has as many connections as it allows.
///
/// @param error  receives the reason on failure
bool greetBus(const QDBusConnection &connection, QString &error);

/// Asks the bus daemon to pass a signal on to the connection; does not wait.
void requestSignal(const QDBusConnection &connection, const BusSignal &signal);

#endif
