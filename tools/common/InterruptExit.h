// SPDX-License-Identifier: MIT
// Ends a program that waits with the exit code that scripts know for SIGINT.
#ifndef INTERRUPTEXIT_H
#define INTERRUPTEXIT_H

/// From now on SIGINT ends the process at once with ExitInterrupted, also in the middle of a call
/// that waits. A SIGINT that the parent had switched off stays off.
void exitOnInterrupt();

/// Whether SIGINT came while an InterruptHold forbade the end.
bool wasInterrupted();

/// For work that must not be left by halves: while one lives, SIGINT is only noted. Keep it short;
/// then look at wasInterrupted().
///
/// Threads: any.
class InterruptHold
{
public:
    InterruptHold();
    ~InterruptHold();
    InterruptHold(const InterruptHold &) = delete;
    InterruptHold &operator=(const InterruptHold &) = delete;
};

#endif
