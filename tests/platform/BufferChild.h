// SPDX-License-Identifier: MIT
// Runs the helper program of the shared-memory tests.
#ifndef BUFFERCHILD_H
#define BUFFERCHILD_H

#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QtTest>

#include <csignal>

/// One child process; killed, also when it is stopped, at the end of its scope.
class BufferChild
{
public:
    /// @param mode  SeparateChannels to look at its warnings, which else go to the test's own
    explicit BufferChild(const QStringList &arguments,
                         QProcess::ProcessChannelMode mode = QProcess::ForwardedErrorChannel)
    {
        process.setProcessChannelMode(mode);
        process.start(BUFFER_HELPER, arguments);
    }
    ~BufferChild()
    {
        process.kill();
        process.waitForFinished();
    }
    BufferChild(const BufferChild &) = delete;
    BufferChild &operator=(const BufferChild &) = delete;

    void tell(const QString &line) { process.write(line.simplified().toUtf8() + '\n'); }

    /// The next line of its output; empty when it ended or 10 s went by.
    QString line()
    {
        QElapsedTimer timer;
        timer.start();
        while (!process.canReadLine() && timer.elapsed() < 10000) {
            if (!process.waitForReadyRead(100) && process.state() == QProcess::NotRunning) {
                break;
            }
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    /// Kills it and waits until the kernel has cleaned up after it.
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

    /// Ends its input and waits for it.
    bool finish()
    {
        process.closeWriteChannel();
        return process.state() == QProcess::NotRunning || process.waitForFinished();
    }

    QProcess process;
};

#endif
