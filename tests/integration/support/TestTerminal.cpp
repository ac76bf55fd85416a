// SPDX-License-Identifier: MIT
// Drives tmux.
#include "TestTerminal.h"

#include <QTest>

namespace {

constexpr int timeLimit = 20000; // milliseconds

} // namespace

QByteArray TestTerminal::command(const QStringList &arguments, QByteArray *output)
{
    const QStringList all
        = QStringList{"-u", "-N", "-S", folder.filePath("socket"), "-f", "/dev/null"} + arguments;
    ChildProcess client("tmux", all);
    if (!client.run() || client.exitCode() != 0) {
        return client.report();
    }
    if (output != nullptr) {
        *output = client.output();
    }
    return {};
}

QByteArray TestTerminal::start(int width, int height)
{
    server.reset(
        new ChildProcess("tmux", {"-u", "-S", folder.filePath("socket"), "-f", "/dev/null", "-D"}));
    if (!server->start()) {
        return server->report();
    }
    QByteArray problem;
    const QStringList session{
        "new-session", "-d",          "-x", QString::number(width), "-y",   QString::number(height),
        "-e",          "PS1=prompt>", "-e", "LC_ALL=C.UTF-8",       "bash", "--norc",
        "--noprofile", "-i"};
    const auto starts = [&] {
        problem = command(session);
        return problem.isEmpty();
    };
    if (!QTest::qWaitFor(starts, timeLimit)) {
        return problem;
    }
    return waitForText("prompt>");
}

QByteArray TestTerminal::type(const QStringList &keys)
{
    return command(QStringList{"send-keys"} + keys);
}

QByteArray TestTerminal::resize(int width, int height)
{
    return command({"resize-window", "-x", QString::number(width), "-y", QString::number(height)});
}

TestTerminal::Lines TestTerminal::lines(bool colours)
{
    QByteArray output;
    QStringList arguments{"capture-pane", "-p"};
    if (colours) {
        arguments.append("-e");
    }
    const QByteArray problem = command(arguments, &output);
    return QString::fromUtf8(problem.isEmpty() ? output.trimmed() : problem).split('\n');
}

QByteArray TestTerminal::state(const QString &name)
{
    QByteArray output;
    const QByteArray problem
        = command({"display-message", "-p", QString("#{%1}").arg(name)}, &output);
    return problem.isEmpty() ? output.trimmed() : problem;
}

QByteArray TestTerminal::waitFor(const std::function<bool(const Lines &)> &condition, bool colours)
{
    Lines seen;
    const auto holds = [&] {
        seen = lines(colours);
        return condition(seen);
    };
    return QTest::qWaitFor(holds, timeLimit) ? QByteArray() : seen.join('\n').toUtf8();
}

QByteArray TestTerminal::waitForText(const QString &text)
{
    return waitFor([&](const Lines &seen) { return !seen.filter(text).isEmpty(); });
}
