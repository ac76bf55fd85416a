// SPDX-License-Identifier: MIT
// Counts the calls that cross a test's bus.
#ifndef CALLMONITOR_H
#define CALLMONITOR_H

#include "ChildProcess.h"
#include "ProcessDataAccess.h"

#include <QRegularExpression>

class CallMonitor
{
public:
    explicit CallMonitor(const QString &address)
        : child("dbus-monitor", {"--address", address, "type='method_call'"})
    {
    }

    /// Returns when it hears of everything.
    bool start() { return child.start() && !child.waitForLineWith("NameLost").isNull(); }

    /// Calls since the last time, each as "module member"; the module is empty for the system's own
    /// services. What clients ask of the bus daemon does not count.
    QStringList calls()
    {
        const QString mark = QString("Mark%1").arg(++marks);
        QString ignored;
        ProcessDataAccess::isServed(mark, ignored); // the monitor tells what came before it first
        if (child.waitForLineWith(mark.toUtf8()).isNull()) {
            return {"no mark"};
        }
        static const QRegularExpression call(
            "destination=com\\.orvalis\\.(?:ProcessData\\.(\\w+)|\\w+) .*member=(\\w+)");
        QStringList found;
        const QString output = QString::fromUtf8(child.output().mid(seen));
        seen = child.output().size();
        for (auto it = call.globalMatch(output); it.hasNext();) {
            const QRegularExpressionMatch match = it.next();
            if (match.captured(2) != "RegisterProvider") {
                found.append(match.captured(1) + ' ' + match.captured(2));
            }
        }
        return found;
    }

private:
    ChildProcess child;
    int marks = 0;
    int seen = 0;
};

#endif
