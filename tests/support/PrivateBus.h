// SPDX-License-Identifier: MIT
// A message bus of a test's own.
#ifndef PRIVATEBUS_H
#define PRIVATEBUS_H

#include "ChildProcess.h"

#include <QScopedPointer>
#include <QTemporaryDir>

/// Runs a bus daemon at an address in a temporary folder and names it in PROCESSDATA_BUS, for this
/// process and its children. The address stays the same when the daemon is stopped and started.
class PrivateBus
{
public:
    enum class Limits {
        Wide, ///< as on a session bus
        OfSystemBus, ///< that a bus daemon has by itself
    };

    explicit PrivateBus(Limits limits = Limits::Wide);
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// Returns when the daemon accepts connections.
    bool start();
    void stop();

    /// Denies everybody all calls of these interfaces from now on, as a policy file would.
    /// Returns when the daemon has taken it in.
    bool refuseCalls(const QStringList &interfaces);

    /// Takes effect with the next start().
    void setLimit(const QByteArray &name, int value);

    QString address() const;
    QByteArray report() const;

private:
    bool configure(const QStringList &refusedInterfaces) const;

    QTemporaryDir directory;
    QByteArray limits;
    QScopedPointer<ChildProcess> daemon;
};

#endif
