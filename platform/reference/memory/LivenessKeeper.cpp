// SPDX-License-Identifier: MIT
// Threads that hold the liveness locks of this process's buffers.
#include "LivenessKeeper.h"

#include "CrashPoint.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <deque>
#include <system_error>
#include <thread>

struct LivenessKeeper::Job
{
    pthread_mutex_t *lock;
    bool take; // else give up
    bool finished = false;
    int error = 0;
};

struct LivenessKeeper::Keeper
{
    std::condition_variable wake;
    std::deque<Job *> jobs;
    int load = 0; // locks held, and jobs that will take one
};

namespace {

// Never destroyed: keepers may still run when static objects are destroyed. A forked child starts
// anew, because the threads stayed with its parent.
LivenessKeeper *&current()
{
    static LivenessKeeper *keeper = nullptr;
    return keeper;
}

// The threads of a library must not run the application's signal handlers.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
    sigset_t before{};
};

}

LivenessKeeper &LivenessKeeper::instance()
{
    [[maybe_unused]] static const int prepared = [] {
        current() = new LivenessKeeper;
        return pthread_atfork(nullptr, nullptr, [] { current() = new LivenessKeeper; });
    }();
    return *current();
}

int LivenessKeeper::hold(pthread_mutex_t *lock)
{
    std::unique_lock<std::mutex> locked(guard);
    Keeper *keeper = findKeeper();
    if (keeper == nullptr) {
        return EAGAIN;
    }
    Job job{lock, true};
    ++keeper->load;
    const int error = run(locked, keeper, job);
    if (error == 0) {
        owners.emplace(lock, keeper);
    }
    return error;
}

int LivenessKeeper::release(pthread_mutex_t *lock)
{
    std::unique_lock<std::mutex> locked(guard);
    const auto owner = owners.find(lock);
    if (owner == owners.end()) {
        return EPERM;
    }
    Keeper *keeper = owner->second;
    owners.erase(owner);
    Job job{lock, false};
    return run(locked, keeper, job);
}

int LivenessKeeper::threadCount()
{
    const std::lock_guard<std::mutex> locked(guard);
    return int(keepers.size());
}

LivenessKeeper::Keeper *LivenessKeeper::findKeeper()
{
    for (const auto &keeper : keepers) {
        if (keeper->load < locksPerThread) {
            return keeper.get();
        }
    }
    return startKeeper();
}

LivenessKeeper::Keeper *LivenessKeeper::startKeeper()
{
    keepers.push_back(std::make_unique<Keeper>());
    Keeper *keeper = keepers.back().get();
    try {
        const SignalsBlocked blocked;
        std::thread([this, keeper] { keep(keeper); }).detach();
    } catch (const std::system_error &) {
        keepers.pop_back();
        return nullptr;
    }
    return keeper;
}

int LivenessKeeper::run(std::unique_lock<std::mutex> &locked, Keeper *keeper, Job &job)
{
    keeper->jobs.push_back(&job);
    keeper->wake.notify_one();
    done.wait(locked, [&job] { return job.finished; });
    return job.error;
}

// The keeper's thread. Neither taking (it never waits) nor giving up can block, so the guard is
// kept.
void LivenessKeeper::keep(Keeper *keeper)
{
    std::unique_lock<std::mutex> locked(guard);
    do {
        keeper->wake.wait(locked, [keeper] { return !keeper->jobs.empty(); });
        Job *job = keeper->jobs.front();
        keeper->jobs.pop_front();
        CRASH_POINT();
        job->error = job->take ? pthread_mutex_trylock(job->lock) : pthread_mutex_unlock(job->lock);
        CRASH_POINT();
        if (!job->take || job->error != 0) {
            --keeper->load;
        }
        job->finished = true;
        done.notify_all();
    } while (keeper->load > 0 || !keeper->jobs.empty());
    const auto position = std::find_if(keepers.begin(), keepers.end(), [keeper](const auto &entry) {
        return entry.get() == keeper;
    });
    keepers.erase(position);
}
