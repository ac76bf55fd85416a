// SPDX-License-Identifier: MIT
// A bus daemon under the installed policies, with users and groups of its own.
#ifndef POLICEDBUS_H
#define POLICEDBUS_H

#include "ChildProcess.h"

#include <QMap>
#include <QScopedPointer>
#include <QTemporaryDir>

/// What a system bus is on a device: whatever the policy files do not allow is denied. The daemon
/// alone sees the users and groups below, in a mount namespace of its own; takes root. Named in
/// PROCESSDATA_BUS while it lives.
class PolicedBus
{
public:
    // As OtherUser.h takes them.
    static constexpr const char *publisher = "61001:61101,61100"; ///< in both groups
    static constexpr const char *client = "61002:61002,61101"; ///< in the group processdata
    static constexpr const char *stranger = "61003:61003"; ///< in none of them
    static constexpr unsigned buffersGroup = 61101;
    static constexpr const char *otherPublisher
        = "61004:61104,61100"; ///< its readers' group: 61104
    static constexpr const char *otherClient = "61005:61005,61104";

    PolicedBus();
    ~PolicedBus();
    PolicedBus(const PolicedBus &) = delete;
    PolicedBus &operator=(const PolicedBus &) = delete;

    /// Returns when the daemon accepts connections.
    ///
    /// @param modules  of the users "pump" (publisher) and "drive" (otherPublisher), by their names:
    ///     in place of the rule for all publishers each may own its module's name alone
    bool start(const QMap<QString, QString> &modules = {});

    QString address() const;
    QByteArray report() const { return daemon ? daemon->report() : QByteArray("no daemon"); }

private:
    bool writePolicies(const QMap<QString, QString> &modules) const;

    QTemporaryDir directory;
    QScopedPointer<ChildProcess> daemon;
};

#endif
