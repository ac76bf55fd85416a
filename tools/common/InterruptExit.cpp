// SPDX-License-Identifier: MIT
// Ends a program that waits with the exit code that scripts know for SIGINT.
#include "InterruptExit.h"

#include "ExitCode.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace {

std::atomic<int> holds{0};
std::atomic<bool> noted{false};

static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a signal handler must not wait for a lock");

// Results are printed in one piece at the end, so nothing half printed is lost.
void handleInterrupt(int)
{
    if (holds > 0) {
        noted = true;
        return;
    }
    ::_exit(ExitInterrupted);
}

} // namespace

void exitOnInterrupt()
{
    struct sigaction action = {};
    if (::sigaction(SIGINT, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = handleInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
}

bool wasInterrupted()
{
    return noted;
}

InterruptHold::InterruptHold()
{
    ++holds;
}

InterruptHold::~InterruptHold()
{
    --holds;
}
