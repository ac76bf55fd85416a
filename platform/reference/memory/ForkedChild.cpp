// SPDX-License-Identifier: MIT
// Tells objects that were made before a fork from those of the process that uses them.
#include "ForkedChild.h"

#include "MemoryLog.h"

#include <atomic>
#include <pthread.h>

namespace {

// How many forks lie between the process in which the first home was made and this one.
std::atomic<unsigned> forkCount{0};
std::atomic<bool> told{false};

void countFork()
{
    ++forkCount;
    told = false;
}

unsigned countedForks()
{
    [[maybe_unused]] static const int prepared = pthread_atfork(nullptr, nullptr, countFork);
    return forkCount;
}

}

HomeProcess::HomeProcess()
    : forks(countedForks())
{
}

bool HomeProcess::isForkedChild() const
{
    return forkCount != forks;
}

bool HomeProcess::refusesChild(const char *what) const
{
    if (!isForkedChild()) {
        return false;
    }
    if (!told.exchange(true)) {
        qCWarning(memoryLog).noquote()
            << "This process was forked after its parent made a" << what
            << "and does nothing with it: fork first, or end the child with _exit or exec";
    }
    return true;
}
