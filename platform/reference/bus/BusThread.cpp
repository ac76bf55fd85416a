// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus.
#include "BusThread.h"

#include "FileDescriptor.h"

#include <QDBusConnection>

#include <array>
#include <cerrno>
#include <sys/eventfd.h>
#include <unistd.h>

BusThread::BusThread(const QString &name)
    : serving(std::make_unique<Serving>())
{
    // QtDBus makes its own thread and statics on first use. Made before this object, they outlive
    // it at the end of the process.
    const QDBusConnection touched(name);
    serving->worker.setObjectName(name);
    serving->context.moveToThread(&serving->worker);
}

bool BusThread::canStart(QString &reason)
{
    // Two threads (QtDBus has one of its own) with two files each at most, a socket, and some room
    // for what other threads open meanwhile.
    constexpr int needed = 10;
    std::array<int, needed> taken{};
    taken.fill(-1);
    bool enough = true;
    for (int &descriptor : taken) {
        descriptor = ::eventfd(0, EFD_CLOEXEC);
        if (descriptor == -1) {
            reason = errorText(errno);
            enough = false;
            break;
        }
    }
    for (const int descriptor : taken) {
        if (descriptor != -1) {
            ::close(descriptor);
        }
    }
    return enough;
}

BusThread::~BusThread()
{
    stop();
    if (home.isForkedChild()) {
        static_cast<void>(serving.release()); // a thread that runs elsewhere cannot be ended here
    }
}

void BusThread::stop()
{
    if (home.isForkedChild()) {
        return;
    }
    serving->worker.quit();
    serving->worker.wait();
}
