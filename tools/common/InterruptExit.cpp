// SPDX-License-Identifier: MIT
// Ends a program that waits with the exit code that scripts know for the signal.
#include "InterruptExit.h"

#include <atomic>
#include <csignal>
#include <initializer_list>
#include <unistd.h>

namespace {

constexpr int exitCodeOfSignals = 128; // what shells add to the number of a signal

std::atomic<int> holds{0};
std::atomic<int> noted{0};

static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not wait for a lock");

// Results are printed in one piece at the end, so nothing half printed is lost.
void handleInterrupt(int signalNumber)
{
    if (holds > 0) {
        noted = signalNumber;
        return;
    }
    ::_exit(exitCodeOfSignals + signalNumber);
}

void handle(int signalNumber)
{
    struct sigaction action = {};
    if (::sigaction(signalNumber, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = handleInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(signalNumber, &action, nullptr);
}

} // namespace

void exitOnInterrupt()
{
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        handle(signalNumber);
    }
}

bool wasInterrupted()
{
    return noted != 0;
}

int interruptExitCode()
{
    return wasInterrupted() ? exitCodeOfSignals + noted : 0;
}

InterruptHold::InterruptHold()
{
    ++holds;
}

InterruptHold::~InterruptHold()
{
    --holds;
}
