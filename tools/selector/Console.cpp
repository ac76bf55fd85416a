// SPDX-License-Identifier: MIT
// Output of reports and reasons.
#include "Console.h"

#include "ExitCode.h"

#include <unistd.h>

int printReport(const Report &report, const Console &console)
{
    console.out << render(report, console.style);
    console.out.flush();
    for (const Entry &entry : report.entries) {
        if (entry.state == Entry::Failed || entry.state == Entry::Doubtful) {
            printReason(entry.subject, entry.reason, console);
        }
    }
    return report.exitCode();
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
    console.silentReasons = terminal && ::isatty(STDERR_FILENO) != 0 && format == Format::Table;
}
