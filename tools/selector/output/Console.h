// SPDX-License-Identifier: MIT
// Where commands write to.
#ifndef CONSOLE_H
#define CONSOLE_H

#include "Report.h"

#include <QTextStream>

/// Results go to out, reasons to err.
struct Console
{
    QTextStream &out;
    QTextStream &err;
    Style style;
    bool silentReasons = false; ///< the reader sees both streams, and the table has the reasons
};

/// Prints a whole report and, for each entry that is not good, its reason.
///
/// @returns the exit code that the report earns
int printReport(const Report &report, const Console &console);

/// Writes out what is printed so far.
///
/// @returns false when some of it, or of what was printed before, could not be written
bool flushResults(const Console &console);

/// The system's reason, after flushResults() has failed.
QString lostResultsReason(const Console &console);

/// Asks on the terminal and waits for the answer.
///
/// @returns whether it is yes; true also where nobody can be asked, because standard input or
///          standard error is not a terminal
bool isConfirmed(const QString &question, const Console &console);

/// Prints one reason on standard error.
void printReason(const QString &subject, const QString &reason, const Console &console);

/// Style and silence for the streams that this process has: tables as wide as the terminal, colour
/// only on a terminal that can and when NO_COLOR is not set.
void fitToTerminal(Console &console, Format format);

#endif
