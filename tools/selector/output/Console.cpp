// SPDX-License-Identifier: MIT
// Output of reports and reasons.
#include "Console.h"

#include "AgeText.h"
#include "ExitCode.h"
#include "TerminalSize.h"

#include <QIODevice>

#include <unistd.h>

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
