// SPDX-License-Identifier: MIT
// Something that goes on while a benchmark runs.
#ifndef BACKGROUNDTHREAD_H
#define BACKGROUNDTHREAD_H

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

/// Repeats a step in a thread of its own from construction to destruction.
class BackgroundThread
{
public:
    explicit BackgroundThread(std::function<void()> step)
        : step(std::move(step))
        , thread([this] {
            while (!ended) {
                this->step();
            }
        })
    {
    }
    ~BackgroundThread()
    {
        ended = true;
        thread.join();
    }
    BackgroundThread(const BackgroundThread &) = delete;
    BackgroundThread &operator=(const BackgroundThread &) = delete;

private:
    const std::function<void()> step;
    std::atomic<bool> ended{false};
    std::thread thread;
};

#endif
