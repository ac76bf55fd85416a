// SPDX-License-Identifier: MIT
// Values asked for over D-Bus: one by a property, many by a map.
#ifndef DBUSPEER_H
#define DBUSPEER_H

#include <QProcess>
#include <QVariantMap>

/// Client of a service in a process of its own, both with Qt's D-Bus module on the session bus.
class DBusPeer
{
public:
    /// @param mapSize  entries of the map that getMap() returns
    explicit DBusPeer(int mapSize);
    ~DBusPeer();

    double get();
    QVariantMap getMap();

    /// Main function of the service; ends when its standard input does.
    static int serve();

private:
    QProcess service;
    const int mapSize;
};

#endif
