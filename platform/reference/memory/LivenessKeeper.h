// SPDX-License-Identifier: MIT
// Threads that hold the liveness locks of this process's buffers.
#ifndef LIVENESSKEEPER_H
#define LIVENESSKEEPER_H

#include <condition_variable>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <unordered_map>
#include <vector>

/// Takes and gives up liveness locks in threads of its own.
///
/// A robust lock belongs to the thread that took it: the kernel would report the publisher dead as
/// soon as the thread that made it ends, and it looks at 2048 locks of one thread at most. So the
/// locks are held by threads that do nothing else, each at most locksPerThread of them. A thread
/// ends when it holds nothing more; at process exit the kernel releases what is still held.
///
/// Threads: any. Works in a forked child too, with threads and locks of its own.
class LivenessKeeper
{
public:
    static constexpr int locksPerThread = 1000;

    static LivenessKeeper &instance();

    /// Takes a fresh lock, to be held until release() or the end of the process.
    ///
    /// @returns 0 or an errno value: EBUSY when someone holds it, EAGAIN when no thread can be made
    int hold(pthread_mutex_t *lock);

    /// Gives up a lock. Must come before its memory is unmapped.
    ///
    /// @returns 0 or an errno value: EPERM when hold() did not take it
    int release(pthread_mutex_t *lock);

    /// Threads that are running now.
    int threadCount();

private:
    struct Keeper;
    struct Job;

    LivenessKeeper() = default;
    Keeper *findKeeper();
    Keeper *startKeeper();
    int run(std::unique_lock<std::mutex> &locked, Keeper *keeper, Job &job);
    void keep(Keeper *keeper);

    std::mutex guard; // all below, and the keepers
    std::condition_variable done;
    std::vector<std::unique_ptr<Keeper>> keepers;
    std::unordered_map<pthread_mutex_t *, Keeper *> owners;
};

#endif
