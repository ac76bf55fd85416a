// SPDX-License-Identifier: MIT
// Runs the helper program of the shared-memory tests.
#ifndef BUFFERCHILD_H
#define BUFFERCHILD_H

#include "ChildProcess.h"

/// One helper process, driven line by line; BufferHelper.cpp says what it does.
class BufferChild : public ChildProcess
{
public:
    /// @param mode  SeparateChannels to look at its warnings, which else go to the test's own
    explicit BufferChild(const QStringList &arguments,
                         QProcess::ProcessChannelMode mode = QProcess::ForwardedErrorChannel)
        : ChildProcess(BUFFER_HELPER, arguments, mode)
    {
        start();
    }

    void tell(const QString &line) { write(line.simplified().toUtf8()); }
    QString line() { return QString::fromUtf8(nextLine()).trimmed(); }
};

#endif
