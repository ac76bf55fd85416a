// SPDX-License-Identifier: MIT
// Lets a libdbus connection wait for its socket and its time limits in a Qt event loop.
#include "BusEventLoop.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <dbus/dbus.h>

#include <memory>

namespace {

struct Attachment
{
    QObject *owner;
    std::function<void()> progressed;
};

dbus_bool_t addWatch(DBusWatch *watch, void *data)
{
    auto *const attachment = static_cast<Attachment *>(data);
    const bool reads = (dbus_watch_get_flags(watch) & DBUS_WATCH_READABLE) != 0U;
    auto *const notifier = new QSocketNotifier(
        dbus_watch_get_unix_fd(watch), reads ? QSocketNotifier::Read : QSocketNotifier::Write,
        attachment->owner);
    notifier->setEnabled(dbus_watch_get_enabled(watch) != FALSE);
    QObject::connect(notifier, &QSocketNotifier::activated, [attachment, watch, reads] {
        const std::function<void()> progressed = attachment->progressed;
        dbus_watch_handle(watch, reads ? DBUS_WATCH_READABLE : DBUS_WATCH_WRITABLE);
        progressed();
    });
    dbus_watch_set_data(watch, notifier, nullptr);
    return TRUE;
}

void removeWatch(DBusWatch *watch, void * /*data*/)
{
    auto *const notifier = static_cast<QSocketNotifier *>(dbus_watch_get_data(watch));
    if (notifier != nullptr) {
        notifier->setEnabled(false);
        notifier->disconnect();
        notifier->deleteLater(); // perhaps from within its own signal
    }
}

void toggleWatch(DBusWatch *watch, void * /*data*/)
{
    auto *const notifier = static_cast<QSocketNotifier *>(dbus_watch_get_data(watch));
    if (notifier != nullptr) {
        notifier->setEnabled(dbus_watch_get_enabled(watch) != FALSE);
    }
}

void toggleTimeout(DBusTimeout *timeout, void * /*data*/)
{
    auto *const timer = static_cast<QTimer *>(dbus_timeout_get_data(timeout));
    if (timer != nullptr && dbus_timeout_get_enabled(timeout) != FALSE) {
        timer->start(dbus_timeout_get_interval(timeout));
    } else if (timer != nullptr) {
        timer->stop();
    }
}

dbus_bool_t addTimeout(DBusTimeout *timeout, void *data)
{
    auto *const timer = new QTimer(static_cast<Attachment *>(data)->owner);
    QObject::connect(timer, &QTimer::timeout, [timeout] { dbus_timeout_handle(timeout); });
    dbus_timeout_set_data(timeout, timer, nullptr);
    toggleTimeout(timeout, data);
    return TRUE;
}

void removeTimeout(DBusTimeout *timeout, void * /*data*/)
{
    auto *const timer = static_cast<QTimer *>(dbus_timeout_get_data(timeout));
    if (timer != nullptr) {
        timer->stop();
        timer->disconnect();
        timer->deleteLater();
    }
}

void freeAttachment(void *data)
{
    delete static_cast<Attachment *>(data);
}
}

bool BusEventLoop::attach(DBusConnection *connection, QObject *owner,
                          const std::function<void()> &progressed)
{
    auto attachment = std::make_unique<Attachment>(Attachment{owner, progressed});
    if (dbus_connection_set_watch_functions(connection, addWatch, removeWatch, toggleWatch,
                                            attachment.get(), freeAttachment)
        == FALSE) {
        return false;
    }
    return dbus_connection_set_timeout_functions(connection, addTimeout, removeTimeout,
                                                 toggleTimeout, attachment.release(), nullptr)
        != FALSE;
}

void BusEventLoop::detach(DBusConnection *connection)
{
    dbus_connection_set_timeout_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
    dbus_connection_set_watch_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
}
