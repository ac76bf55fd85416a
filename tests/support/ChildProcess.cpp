// SPDX-License-Identifier: MIT
// A program that a test starts, watches and ends.
#include "ChildProcess.h"

#include <QDeadlineTimer>
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
    process.waitForBytesWritten(waitLimit);
}

void ChildProcess::closeInput()
{
    process.closeWriteChannel();
}

QByteArray ChildProcess::waitForLine(const std::function<bool(const QByteArray &)> &condition)
{
    QByteArray line;
    bool found = false;
    const auto ended = [&] {
        while (!found && takeLine(line)) {
            found = condition(line);
        }
        return found || !isRunning();
    };
    return QTest::qWaitFor(ended, waitLimit) && found ? line : QByteArray();
}

QByteArray ChildProcess::waitForLineWith(const QByteArray &text)
{
    return waitForLine([&text](const QByteArray &line) { return line.contains(text); });
}

QByteArray ChildProcess::nextLine()
{
    QByteArray line;
    const QDeadlineTimer limit(waitLimit);
    while (!takeLine(line) && isRunning() && !limit.hasExpired()) {
        process.waitForReadyRead(100);
    }
    return line;
}

bool ChildProcess::waitForEnd()
{
    const bool ended = QTest::qWaitFor([this] { return !isRunning(); }, waitLimit);
    collect();
    return ended;
}

bool ChildProcess::finish()
{
    closeInput();
    return waitForEnd() && exitCode() == 0;
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

bool ChildProcess::takeLine(QByteArray &line)
{
    collect();
    const int end = standardOutput.indexOf('\n', consumed);
    if (end < 0) {
        return false;
    }
    line = standardOutput.mid(consumed, end - consumed);
    consumed = end + 1;
    return true;
}

QByteArray outputOf(const QString &program, const QStringList &arguments, int exitCode,
                    const QByteArray &input)
{
    ChildProcess child(program, arguments);
    if (child.start() && !input.isEmpty()) {
        child.write(input);
    }
    child.closeInput();
    if (!child.waitForEnd() || child.exitCode() != exitCode) {
        qWarning("%s", child.report().constData());
        return QByteArray();
    }
    return child.output() + child.errors();
}
