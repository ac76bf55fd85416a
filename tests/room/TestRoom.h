// SPDX-License-Identifier: MIT
// Included before every test of a room: its main function becomes one of many in the room's program.
#ifndef TESTROOM_H
#define TESTROOM_H

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <thread>

/// A main function that the room's program can run, known by its source file.
class RoomTest
{
public:
    using Main = int (*)(int, char **);

    RoomTest(const char *sourceFile, Main runTest);
    RoomTest(const RoomTest &) = delete;
    RoomTest &operator=(const RoomTest &) = delete;

    /// The source file without directory and suffix.
    const std::string name;
    const Main run;
    const RoomTest *const next;

    static const RoomTest *first();
};

// Of Qt's macros as of those written by hand; each keeps the application object that it makes or not.
#define main(...)                                                                                  \
    static runRoomTest(__VA_ARGS__);                                                               \
    static const RoomTest roomTest(__FILE__, runRoomTest);                                         \
    int runRoomTest(__VA_ARGS__)

#endif
