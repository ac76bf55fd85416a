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
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// Returns when the daemon accepts connections.
    bool start();
    void stop();

    QString address() const;
    QByteArray report() const;

private:
    QTemporaryDir directory;
    QScopedPointer<ChildProcess> daemon;
};

#endif
