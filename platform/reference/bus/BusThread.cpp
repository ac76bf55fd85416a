// SPDX-License-Identifier: MIT
// A thread whose event loop serves objects of the bus.
#include "BusThread.h"

#include <QDBusConnection>

BusThread::BusThread(const QString &name)
{
    // QtDBus makes its own thread and statics on first use. Made before this object, they outlive
    // it at the end of the process.
    const QDBusConnection touched(name);
    worker.setObjectName(name);
    context.moveToThread(&worker);
}

BusThread::~BusThread()
{
    stop();
}

void BusThread::stop()
{
    worker.quit();
    worker.wait();
}
