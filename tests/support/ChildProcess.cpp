// SPDX-License-Identifier: MIT
// A program that a test starts, watches and ends.
#include "ChildProcess.h"

#include <QTest>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace {
const int waitLimit = 20000; // generous: sanitized programs on a loaded machine
}

void ChildProcess::DyingWithParent::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments,
                           const QProcess::ProcessChannelMode &mode)
{
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessChannelMode(mode);
    QObject::connect(&process, &QProcess::readyReadStandardOutput, [this] { collect(); });
    QObject::connect(&process, &QProcess::readyReadStandardError, [this] { collect(); });
}

ChildProcess::~ChildProcess()
{
    kill();
}

bool ChildProcess::start()
{
    process.start();
    return process.waitForStarted(waitLimit);
}

void ChildProcess::write(const QByteArray &line)
{
    process.write(line + '\n');
}

void ChildProcess::closeInput()
{
    process.closeWriteChannel();
}

QByteArray ChildProcess::waitForLine(const std::function<bool(const QByteArray &)> &condition)
{
    QByteArray found;
    const bool ended = QTest::qWaitFor(
        [this, &condition, &found] {
            collect();
            for (int end = standardOutput.indexOf('\n', consumed); end >= 0;
                 end = standardOutput.indexOf('\n', consumed)) {
                const QByteArray line = standardOutput.mid(consumed, end - consumed);
                consumed = end + 1;
                if (condition(line)) {
                    found = line;
                    return true;
                }
            }
            return !isRunning();
        },
        waitLimit);
    return ended ? found : QByteArray();
}

QByteArray ChildProcess::waitForLineWith(const QByteArray &text)
{
    return waitForLine([&text](const QByteArray &line) { return line.contains(text); });
}

bool ChildProcess::waitForEnd()
{
    const bool ended = QTest::qWaitFor([this] { return !isRunning(); }, waitLimit);
    collect();
    return ended;
}

void ChildProcess::kill()
{
    if (isRunning()) {
        process.kill(); // ends a stopped process too
        process.waitForFinished(waitLimit);
    }
    collect();
}

void ChildProcess::terminate()
{
    process.terminate();
}

void ChildProcess::interrupt()
{
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
}

void ChildProcess::suspend()
{
    const auto id = static_cast<pid_t>(process.processId());
    ::kill(id, SIGSTOP);
    siginfo_t stopped{};
    ::waitid(P_PID, static_cast<id_t>(id), &stopped, WSTOPPED | WNOWAIT);
}

void ChildProcess::resume()
{
    ::kill(static_cast<pid_t>(process.processId()), SIGCONT);
}

bool ChildProcess::isRunning() const
{
    return process.state() != QProcess::NotRunning;
}

int ChildProcess::exitCode() const
{
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

qint64 ChildProcess::pid() const
{
    return process.processId();
}

QByteArray ChildProcess::output() const
{
    return standardOutput;
}

QByteArray ChildProcess::errors() const
{
    return standardError;
}

QByteArray ChildProcess::report() const
{
    return process.program().toLocal8Bit() + ' '
        + process.arguments().join(QLatin1Char(' ')).toLocal8Bit()
        + (isRunning() ? " runs" : " ended with " + QByteArray::number(exitCode()))
        + "\n-- its output:\n" + standardOutput + "-- its errors:\n" + standardError;
}

void ChildProcess::collect()
{
    standardOutput += process.readAllStandardOutput();
    standardError += process.readAllStandardError();
}
