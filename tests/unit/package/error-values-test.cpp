// SPDX-License-Identifier: MIT
// Error values are made by their constructor, each anew: this platform counts.
#include <ProcessValue.h>
#include <SelectorHandlerProcessValue.h>

#include <cstdio>

int main()
{
    // Neither is a URL, so nothing is ever read.
    SelectorHandlerProcessValue handler({QStringLiteral("a"), QStringLiteral("b")}, nullptr);
    ProcessValue::made = 0;
    ProcessValue::copied = 0;
    const int size = handler.getValues().size();
    // One to begin with and one in its place, of each selector.
    if (size != 2 || ProcessValue::made != 2 * size || ProcessValue::copied != 0) {
        std::fprintf(stderr, "%d values: %d made, %d copied\n", size, ProcessValue::made,
                     ProcessValue::copied);
        return 1;
    }
    return 0;
}
