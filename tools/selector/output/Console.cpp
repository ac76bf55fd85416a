// SPDX-License-Identifier: MIT
// Output of reports and reasons.
#include "Console.h"

#include "AgeText.h"
#include "ExitCode.h"
#include "TerminalSize.h"

#include <QIODevice>

#include <cerrno>
#include <unistd.h>

namespace {

// Without QFile, which would not read on behind an end of the list that came from the same terminal.
QByteArray readLineOfTerminal()
{
    QByteArray line;
    char character = 0;
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, &character, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count != 1 || character == '\n') {
            return line;
        }
        line += character;
    }
}

} // namespace

int printReport(const Report &report, const Console &console)
{
    console.out << render(report, console.style);
    if (!flushResults(console)) {
        return report.exitCode(); // why, is said once, at the end
    }
    for (const Entry &entry : report.entries) {
        if (entry.state == Entry::Failed || entry.state == Entry::Doubtful) {
            printReason(entry.subject, entry.reason, console);
        }
    }
    return report.exitCode();
}

bool flushResults(const Console &console)
{
    console.out.flush();
    return console.out.status() == QTextStream::Ok;
}

QString lostResultsReason(const Console &console)
{
    return QStringLiteral("standard output: %1").arg(console.out.device()->errorString());
}

bool isConfirmed(const QString &question, const Console &console)
{
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDERR_FILENO) == 0) {
        return true;
    }
    console.err << question << " [y/N] ";
    console.err.flush();
    const QByteArray answer = readLineOfTerminal().trimmed().toLower();
    return answer == "y" || answer == "yes";
}

void printReason(const QString &subject, const QString &reason, const Console &console)
{
    if (console.silentReasons) {
        return;
    }
    const QString place = subject.isEmpty() ? QString() : printable(subject) + QStringLiteral(": ");
    console.err << "selector: " << place << printable(reason) << '\n';
    console.err.flush();
}

void fitToTerminal(Console &console, Format format)
{
    const bool terminal = ::isatty(STDOUT_FILENO) != 0;
    console.style.format = format;
    console.style.colour = terminal && qEnvironmentVariableIsEmpty("NO_COLOR")
        && qgetenv("TERM") != QByteArray("dumb");
    console.style.pretty = terminal;
    console.style.width = terminal ? TerminalSize::ofStandardOutput().width : 0;
    console.style.now = currentTime();
    console.silentReasons = terminal && ::isatty(STDERR_FILENO) != 0 && format == Format::Table;
}
