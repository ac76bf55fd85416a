// SPDX-License-Identifier: MIT
// Reads a list once, or sets it up, by handler or floor, for callgrind: instructions do not depend
// on the machine's load.
#include "Floor.h"
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"
#include "SetUpFloor.h"

#include <cstdlib>
#include <cstring>

// Not inlined, so that callgrind can toggle its counting at their borders.
__attribute__((noinline)) int countedFloor(const Floor &floor, int count)
{
    return floor.read(0, count).size();
}

__attribute__((noinline)) int countedHandler(SelectorHandlerProcessValue &handler, int count)
{
    return handler.getValues(0, count).size();
}

__attribute__((noinline)) int countedFloorSetUp(const QByteArray &description,
                                                const QVector<QString> &urls)
{
    return setUpFloor(description, urls).size();
}

__attribute__((noinline)) int countedHandlerSetUp(const QVector<QString> &urls)
{
    const SelectorHandlerProcessValue handler(urls, nullptr);
    return urls.size();
}

int main(int argc, char **argv)
{
    if (argc != 3) {
        return 2;
    }
    const int count = std::atoi(argv[2]);
    const InProcessSource source(QStringLiteral("Bench%1").arg(getpid()), QStringLiteral("1"),
                                 count);
    const QByteArray what = argv[1];
    int done = 0;
    // Each twice, counted the second time: the heap has its blocks, the dynamic linker its
    // addresses.
    if (what.endsWith("set-up")) {
        const bool isFloor = what.startsWith("floor");
        done = isFloor ? setUpFloor(source.description(), source.urls()).size() : count;
        SelectorHandlerProcessValue(source.urls(), nullptr).getValues(0, count);
        done = isFloor ? countedFloorSetUp(source.description(), source.urls())
                       : countedHandlerSetUp(source.urls());
    } else {
        const Floor floor(source);
        SelectorHandlerProcessValue handler(source.urls(), nullptr);
        floor.read(0, count);
        handler.getValues(0, count);
        done = what == "floor" ? countedFloor(floor, count) : countedHandler(handler, count);
    }
    return done == count ? 0 : 1;
}
