// SPDX-License-Identifier: MIT
// Lets a libdbus connection wait for its socket and its time limits in a Qt event loop.
#ifndef BUSEVENTLOOP_H
#define BUSEVENTLOOP_H

#include <functional>

class QObject;
struct DBusConnection;

/// Threads: that of the connection's owner.
namespace BusEventLoop {

/// @param owner       in whose event loop it waits; detach() comes before its end
/// @param progressed  called after something was read or written
/// @returns false when there is no memory
bool attach(DBusConnection *connection, QObject *owner, const std::function<void()> &progressed);
void detach(DBusConnection *connection);
}

#endif
