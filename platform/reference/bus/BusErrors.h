// SPDX-License-Identifier: MIT
// Tells kinds of D-Bus errors apart.
#ifndef BUSERRORS_H
#define BUSERRORS_H

#include "WireMessage.h"

#include <QDBusMessage>
#include <QString>

/// Threads: any.
namespace BusErrors {

enum class Kind {
    TimedOut, ///< no answer came in time, or the callee died with the call
    RefusedForNow, ///< the service, or the bus, has too much to do: worth another try
    ServiceMissing, ///< nobody owns the service's name
    Denied, ///< the bus or the service does not permit the call
    Disconnected, ///< the connection to the bus was lost
    Other, ///< also: no error
};

/// @param name  of the error
Kind kindOf(const QString &name);
inline Kind kindOf(const QDBusMessage &answer)
{
    return kindOf(answer.errorName());
}

/// Why a call failed, and the error's name in parentheses. What the bus library and the bus daemon
/// explain at length is said in one sentence of ours; what a service says is left as it is.
QString text(const QDBusMessage &answer);

/// The same without the name, for connections that cannot be made.
QString reason(const QString &name, const QString &given);

/// The same for an answer to a service's own call; null when the connection was lost.
QString text(const WireMessage &answer);
}

#endif
