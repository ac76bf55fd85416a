// SPDX-License-Identifier: MIT
// Ends a program that waits with the exit code that scripts know for the signal.
#ifndef INTERRUPTEXIT_H
#define INTERRUPTEXIT_H

/// From now on SIGINT, SIGTERM and SIGHUP end the process at once with 128 and the signal's number,
/// as shells report it, also in the middle of a call that waits. A signal that the parent had
/// switched off stays off.
void exitOnInterrupt();

/// Whether one of the signals came while an InterruptHold forbade the end.
bool wasInterrupted();

/// The exit code that the last such signal asks for; 0 when none came.
int interruptExitCode();

/// For work that must not be left half done: while one lives, the signals are only noted. Keep it
/// short; then look at wasInterrupted().
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
