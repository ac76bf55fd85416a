// SPDX-License-Identifier: MIT
// Reads a list once by handler or floor, for callgrind: instructions do not depend on the machine's
// load.
#include "Floor.h"
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"

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

int main(int argc, char **argv)
{
    if (argc != 3) {
        return 2;
    }
    const int count = std::atoi(argv[2]);
    const InProcessSource source(QStringLiteral("Bench%1").arg(getpid()), QStringLiteral("1"),
                                 count);
    const Floor floor(source);
    SelectorHandlerProcessValue handler(source.urls(), nullptr);
    // Warm: the heap has its blocks, the dynamic linker its addresses.
    floor.read(0, count);
    handler.getValues(0, count);
    const bool isFloor = std::strcmp(argv[1], "floor") == 0;
    const int read = isFloor ? countedFloor(floor, count) : countedHandler(handler, count);
    return read == count ? 0 : 1;
}
