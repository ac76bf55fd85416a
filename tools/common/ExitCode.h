// SPDX-License-Identifier: MIT
// Exit codes that all tools share.
#ifndef EXITCODE_H
#define EXITCODE_H

/// What a tool reports to the script that ran it. The numbers are documented and never change.
enum ExitCode {
    ExitAllGood = 0,
    ExitSomeFailed = 1, ///< the tool ran, but not all that was asked for succeeded
    ExitUsage = 2, ///< the command line is wrong
    ExitNotReachable = 3, ///< the bus or a service that everything depends on is out of reach
    ExitTimeLimit = 4, ///< the time limit ended it, or kept a service from answering
    ExitDenied = 5, ///< permission is missing
    ExitInterrupted = 130, ///< SIGINT ended it
};

#endif
