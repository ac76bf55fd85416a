// SPDX-License-Identifier: MIT
// What this process warns of, while the object lives.
#ifndef WARNINGLOG_H
#define WARNINGLOG_H

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Takes warnings out of the test's log. Everything else passes through. One object at a time.
class WarningLog
{
public:
    WarningLog();
    ~WarningLog();
    WarningLog(const WarningLog &) = delete;
    WarningLog &operator=(const WarningLog &) = delete;

    /// The library's own warnings: those of the default category.
    QStringList texts() const;

private:
    static void receive(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QtMessageHandler previous;
    mutable QMutex mutex;
    QStringList collected;
};

#endif
