// SPDX-License-Identifier: MIT
// A program that a test starts, watches and ends.
#ifndef CHILDPROCESS_H
#define CHILDPROCESS_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

/// Collects what the program prints and never outlives the test: the destructor kills it, and the
/// kernel does when the test dies first.
class ChildProcess
{
public:
    ChildProcess(const QString &program, const QStringList &arguments,
                 const QProcess::ProcessChannelMode &mode = QProcess::SeparateChannels);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    bool start();
    /// Starts it and waits for its end.
    bool run() { return start() && waitForEnd(); }
    /// Returns when the system has taken the line.
    void write(const QByteArray &line);
    void closeInput();

    /// Runs the event loop until a whole line of the program's output satisfies the condition.
    /// Lines are consumed up to and with that one, which is returned; null after the time limit.
    QByteArray waitForLine(const std::function<bool(const QByteArray &)> &condition);
    QByteArray waitForLineWith(const QByteArray &text);
    /// The next whole line, waited for without the event loop; null after the time limit.
    QByteArray nextLine();

    bool waitForEnd();
    /// Ends its input. Whether it then ends by itself, with 0.
    bool finish();
    void kill();
    void terminate();
    void interrupt();
    /// Returns when the kernel has really stopped it.
    void suspend();
    void resume();

    bool isRunning() const;
    /// -1 when a signal ended it.
    int exitCode() const;
    qint64 pid() const;
    QByteArray output() const;
    QByteArray errors() const;

    /// For a failure message: program, state, both outputs.
    QByteArray report() const;

private:
    class DyingWithParent : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    void collect();
    bool takeLine(QByteArray &line);

    DyingWithParent process;
    QByteArray standardOutput;
    QByteArray standardError;
    int consumed = 0;
};

/// Runs it to its end, which must come with this exit code.
#define VERIFY_RUN(child, code)                                                                    \
    QVERIFY2((child).run() && (child).exitCode() == (code), (child).report().constData())

/// What a program prints until it ends, its errors last. When its exit code is another one: nothing, and
/// what happened as a warning.
QByteArray outputOf(const QString &program, const QStringList &arguments, int exitCode = 0,
                    const QByteArray &input = {});

#endif
