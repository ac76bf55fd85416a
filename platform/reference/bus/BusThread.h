// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus, from the first use to the process's end.
#ifndef BUSTHREAD_H
#define BUSTHREAD_H

#include "BusSettings.h"
#include "ForkedChild.h"

#include <QMutex>
#include <QObject>
#include <QString>
#include <QThread>
#include <QVector>

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

/// Lets bus objects follow the bus whatever the client's or publisher's threads do: a thread that
/// waits in a blocking fetch still learns that the service went away, and a busy publisher still
/// answers.
///
/// Runs while there is a QCoreApplication, because without one Qt delivers no events to threads, and
/// again with the next. Belongs to what is never destroyed: others may need it until the process has
/// ended, and in a forked child nothing of it can be.
///
/// Threads: any but this one.
class BusThread
{
public:
    using Lock = std::unique_lock<QMutex>;

    /// @param done      what a process did that has this thread, for its forked child: "published"
    /// @param shutDown  called in the thread, under the lock, before it ends
    BusThread(const char *name, const char *done, std::function<void()> shutDown);
    BusThread(const BusThread &) = delete;
    BusThread &operator=(const BusThread &) = delete;

    /// Whether this process can open as many files as a bus thread and its connection take, to be
    /// asked before either is made: GLib, on which Qt's event loops stand, ends a process that
    /// cannot.
    ///
    /// @param reason  receives the system's; left alone on success
    static bool canStart(QString &reason);

    /// Makes sure that it runs.
    ///
    /// @param error  receives one sentence that names the bus and the reason on failure
    /// @returns the lock that guards what its user keeps, held: never take it in the thread; none on
    ///          failure
    Lock start(const BusChoice &bus, QString &error);

    /// The same lock; not held when it is not free at once.
    Lock tryLock() { return Lock(mutex, std::try_to_lock); }
    Lock lock() { return Lock(mutex); }

    /// Whether the thread stayed with the process that this one was forked from. It then does
    /// nothing that it is asked for, and says so once.
    bool isMissing() const;

    /// Makes an object live in the thread, which has been started.
    void adopt(QObject *object) { object->moveToThread(&serving.load()->worker); }

    /// Runs a function in the thread and waits for it; once the thread has ended, in the calling
    /// one. Must not be called from within the thread, nor under a lock that the function takes.
    template <typename Function> void runAndWait(Function &&function)
    {
        if (isMissing()) {
            return;
        }
        Serving *const present = serving.load();
        if (present != nullptr && present->worker.isRunning()) {
            QMetaObject::invokeMethod(&present->context, std::forward<Function>(function),
                                      Qt::BlockingQueuedConnection);
        } else {
            std::forward<Function>(function)();
        }
    }

private:
    struct Serving
    {
        const HomeProcess home;
        QThread worker;
        QObject context; // lives in worker
    };

    static void endAll();
    static bool endLast();
    static void endOfProcess();
    bool begin(QString &reason);
    void end();

    // Those that run, in the order in which they started.
    struct Running
    {
        static Running &all();
        QMutex mutex;
        QVector<BusThread *> threads;
    };

    const char *const name;
    const char *const done;
    const std::function<void()> shutDown;
    QMutex mutex;
    std::atomic<Serving *> serving{nullptr}; // made when it starts first
};

#endif
