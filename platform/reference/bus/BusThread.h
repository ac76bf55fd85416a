// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus.
#ifndef BUSTHREAD_H
#define BUSTHREAD_H

#include <QObject>
#include <QThread>

#include <utility>

/// Lets bus objects follow the bus whatever the client's or publisher's threads do: a thread that
/// waits in a blocking fetch still learns that the service went away, and a busy publisher still
/// answers.
class BusThread
{
public:
    explicit BusThread(const QString &name);

    /// Ends the thread. Objects that live in it must be shut down before.
    ~BusThread();
    BusThread(const BusThread &) = delete;
    BusThread &operator=(const BusThread &) = delete;

    QThread *thread() { return &worker; }

    /// Runs a function in the thread and waits for it. Must not be called from within the thread,
    /// nor under a lock that the function takes.
    template <typename Function> void runAndWait(Function &&function)
    {
        QMetaObject::invokeMethod(&context, std::forward<Function>(function),
                                  Qt::BlockingQueuedConnection);
    }

    /// Runs a function in the thread, after all that was asked for earlier.
    template <typename Function> void run(Function &&function)
    {
        QMetaObject::invokeMethod(&context, std::forward<Function>(function), Qt::QueuedConnection);
    }

private:
    QThread worker;
    QObject context; // lives in worker
};

#endif
