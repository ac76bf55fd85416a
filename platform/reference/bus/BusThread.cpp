// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus, from the first use to the process's end.
#include "BusThread.h"

#include "FileDescriptor.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <cerrno>
#include <cstdlib>
#include <deque>
#include <pthread.h>
#include <sys/eventfd.h>

BusThread::Running &BusThread::Running::all()
{
    static auto *const running = [] {
        // A child must find it free, and may start threads of its own.
        pthread_atfork([] { all().mutex.lock(); }, [] { all().mutex.unlock(); },
                       [] { all().mutex.unlock(); });
        return new Running;
    }();
    return *running;
}

BusThread::BusThread(const char *name, const char *done, std::function<void()> shutDown)
    : name(name)
    , done(done)
    , shutDown(std::move(shutDown))
{
}

bool BusThread::canStart(QString &reason)
{
    // Two threads (QtDBus has one of its own) with two files each at most, a socket, and some room
    // for what other threads open meanwhile.
    constexpr int needed = 10;
    std::deque<FileDescriptor> taken;
    for (int i = 0; i < needed; ++i) {
        if (!taken.emplace_back(::eventfd(0, EFD_CLOEXEC)).isValid()) {
            reason = errorText(errno);
            return false;
        }
    }
    return true;
}

bool BusThread::isMissing() const
{
    const Serving *const present = serving.load();
    return present != nullptr && present->home.refusesChild("bus connection");
}

BusThread::Lock BusThread::start(const BusChoice &bus, QString &error)
{
    QString reason;
    if (QCoreApplication::instance() == nullptr) {
        reason = QStringLiteral("there is no QCoreApplication");
    } else if (isMissing()) { // where the lock may be held for good
        reason = QStringLiteral("this process was forked after its parent had %1; fork first")
                     .arg(QLatin1String(done));
    } else {
        Lock held(mutex);
        if (begin(reason)) {
            return held;
        }
    }
    error = QStringLiteral("Cannot connect to %1: %2").arg(bus.label(), reason);
    return Lock();
}

bool BusThread::begin(QString &reason)
{
    Serving *present = serving.load();
    if (present != nullptr && present->worker.isRunning()) {
        return true;
    }
    if (!canStart(reason)) {
        return false;
    }
    // QtDBus makes its own thread and statics on first use. Made before the process is told what to
    // do at its end, they are still there then.
    const QDBusConnection touched{QLatin1String(name)};
    if (present == nullptr) {
        present = new Serving;
        present->worker.setObjectName(QLatin1String(name));
        present->context.moveToThread(&present->worker);
        serving = present;
    }
    present->worker.start();
    const Lock held(Running::all().mutex);
    Running::all().threads += this;
    qAddPostRoutine(&BusThread::endAll);
    static_cast<void>(std::atexit(&BusThread::endOfProcess));
    return true;
}

// For a process that ends without the end of its QCoreApplication. Registered at each start, and ends
// one: a static object that was made with a thread running goes before the thread does.
void BusThread::endOfProcess()
{
    endLast();
    const Lock held(Running::all().mutex);
    if (Running::all().threads.isEmpty()) {
        qRemovePostRoutine(&BusThread::endAll);
    }
}

// Each before those that it was started after.
void BusThread::endAll()
{
    while (endLast()) { }
}

bool BusThread::endLast()
{
    Lock held(Running::all().mutex);
    if (Running::all().threads.isEmpty()) {
        return false;
    }
    BusThread *const last = Running::all().threads.takeLast();
    held.unlock();
    last->end();
    return true;
}

void BusThread::end()
{
    if (isMissing()) {
        return;
    }
    const Lock held(mutex);
    runAndWait(shutDown);
    QThread &worker = serving.load()->worker;
    worker.quit();
    worker.wait();
}
