// SPDX-License-Identifier: MIT
// Heap that a list of selectors takes, library and platform together. Exact: no clock is in it.
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"

#include <cstdio>

#include <malloc.h>
#include <unistd.h>

int main()
{
    constexpr int count = 1000;
    const InProcessSource source(QStringLiteral("Heap%1").arg(getpid()), QStringLiteral("1"),
                                 count);
    const QVector<QString> urls = source.urls();
    SelectorHandlerProcessValue(urls, nullptr); // what is made once for a process is there
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const SelectorHandlerProcessValue handler(urls, nullptr);
    const size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
    std::printf("%zu\n", (after - before) / count);
    return 0;
}
