// SPDX-License-Identifier: MIT
// Work that no caller's thread is to be held up by.
#include "BackgroundWork.h"

#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

class Worker
{
public:
    void add(std::function<void()> work)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!hasEnded && (isRunning || start())) {
                waiting.push_back(std::move(work));
                return;
            }
        }
        work();
    }

    /// What is under way is finished, and what waits is done by whoever asks for more.
    void end()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            hasEnded = true;
        }
        if (thread.joinable()) {
            thread.join();
        }
    }

private:
    // Under the lock. The thread before it has nothing left to do but to return.
    bool start()
    {
        if (thread.joinable()) {
            thread.join();
        }
        try {
            thread = std::thread([this] { work(); });
        } catch (const std::system_error &) {
            return false;
        }
        isRunning = true;
        return true;
    }

    void work()
    {
        std::unique_lock<std::mutex> lock(mutex);
        while (!waiting.empty()) {
            {
                const std::function<void()> next = std::move(waiting.front());
                waiting.pop_front();
                lock.unlock();
                next();
            }
            lock.lock();
        }
        isRunning = false;
    }

    std::mutex mutex;
    std::deque<std::function<void()>> waiting;
    std::thread thread;
    bool isRunning = false;
    bool hasEnded = false;
};

// Never destroyed: other statics may come to it while they are.
Worker &worker()
{
    static auto *const theOne = new Worker;
    return *theOne;
}

}

void BackgroundWork::run(std::function<void()> work)
{
    static const struct Ending
    {
        Ending() { worker(); }
        ~Ending() { worker().end(); }
    } ending;
    worker().add(std::move(work));
}
