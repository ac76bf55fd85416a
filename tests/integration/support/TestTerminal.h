// SPDX-License-Identifier: MIT
// A terminal that a test types on and looks at.
#ifndef TESTTERMINAL_H
#define TESTTERMINAL_H

#include "ChildProcess.h"

#include <QScopedPointer>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/// A shell in tmux, whose server listens on a socket of the test's own and dies with the test.
class TestTerminal
{
public:
    using Lines = QStringList;

    /// @returns an empty text, or what went wrong
    QByteArray start(int width, int height);

    /// What the tmux command sends: each text as it is, or the name of a key such as "Enter" or "C-c".
    QByteArray type(const QStringList &keys);

    /// Types a command line.
    QByteArray run(const QString &command) { return type({command, "Enter"}); }

    QByteArray resize(int width, int height);

    /// What is to be seen, without blank lines at the end.
    ///
    /// @param colours  with the sequences that make characters stand out
    Lines lines(bool colours = false);

    /// A value that tmux keeps about the terminal, such as "cursor_flag".
    QByteArray state(const QString &name);

    /// Looks until it satisfies the condition. Returns an empty text, or what was to be seen at the
    /// end of the time limit.
    QByteArray waitFor(const std::function<bool(const Lines &)> &condition, bool colours = false);

    /// The same for a line that has the text.
    QByteArray waitForText(const QString &text);

private:
    QByteArray command(const QStringList &arguments, QByteArray *output = nullptr);

    QTemporaryDir folder;
    QScopedPointer<ChildProcess> server;
};

#endif
