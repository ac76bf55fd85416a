// SPDX-License-Identifier: MIT
// Which bus is used and how long a call may take: the settings that the environment holds.
#ifndef BUSSETTINGS_H
#define BUSSETTINGS_H

#include <QDBusConnection>
#include <QString>

#include <limits>

/// The bus that PROCESSDATA_BUS chooses: "system" (also when unset or empty), "session", or an
/// address.
class BusChoice
{
public:
    enum class Kind { System, Session, Address };

    static BusChoice fromEnvironment();

    /// Opens a new connection of its own; on a bus with an address only the socket.
    ///
    /// @param connectionName  under which QtDBus keeps it
    QDBusConnection connectTo(const QString &connectionName) const;

    /// Closes it again.
    static void disconnectFrom(const QString &connectionName);

    /// Whether QtDBus takes the connection for one to another program, not to a bus: whoever opens
    /// it must introduce it to the bus daemon, and ask for signals.
    bool needsGreeting() const { return kind == Kind::Address; }

    /// For people: which bus, with its address where one is known.
    QString label() const;

    /// Equal for choices that reach the same bus.
    QString key() const;

    Kind which() const { return kind; }
    const QString &where() const { return address; } ///< empty where the bus library knows best

private:
    Kind kind = Kind::System;
    QString address;
};

/// How long one call may take: what setCallTimeLimit() says, else PROCESSDATA_DBUS_TIMEOUT_MS, 1 to
/// 600,000, default 2,000; less when setCallDeadline() leaves less.
///
/// Units:   milliseconds.
/// Errors:  anything else in the variable: one warning for each text, and the default.
/// Threads: any.
int callTimeLimit();

/// Of calls that may take for ever; libdbus takes this number so.
constexpr int noTimeLimit = std::numeric_limits<int>::max();

#endif
