// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus.
#ifndef BUSTHREAD_H
#define BUSTHREAD_H

#include "ForkedChild.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <memory>
#include <utility>

/// Lets bus objects follow the bus whatever the client's or publisher's threads do: a thread that
/// waits in a blocking fetch still learns that the service went away, and a busy publisher still
/// answers.
///
/// Runs only while there is a QCoreApplication: without one Qt delivers no events to threads.
class BusThread
{
public:
    explicit BusThread(const QString &name);
    ~BusThread();
    BusThread(const BusThread &) = delete;
    BusThread &operator=(const BusThread &) = delete;

    /// Whether this process can open as many files as a bus thread and its connection take, to be
    /// asked before either is made: GLib, on which Qt's event loops stand, ends a process that
    /// cannot.
    ///
    /// @param reason  receives the system's; left alone on success
    static bool canStart(QString &reason);

    bool isRunning() const { return serving->worker.isRunning(); }
    void start() { serving->worker.start(); }

    /// Whether the thread stayed with the process that this one was forked from. It then does
    /// nothing that it is asked for, and says so once.
    bool isMissing() const { return home.refusesChild("bus connection"); }

    /// Waits for the end of what the thread is doing. Its objects must have been shut down before.
    void stop();

    /// Makes an object live in the thread.
    void adopt(QObject *object) { object->moveToThread(&serving->worker); }

    /// Runs a function in the thread and waits for it; once the thread has been stopped, in the
    /// calling one. Must not be called from within the thread, nor under a lock that the function
    /// takes.
    template <typename Function> void runAndWait(Function &&function)
    {
        if (isMissing()) {
            return;
        }
        if (isRunning()) {
            QMetaObject::invokeMethod(&serving->context, std::forward<Function>(function),
                                      Qt::BlockingQueuedConnection);
        } else {
            std::forward<Function>(function)();
        }
    }

private:
    struct Serving
    {
        QThread worker;
        QObject context; // lives in worker
    };

    const HomeProcess home;
    std::unique_ptr<Serving> serving;
};

#endif
