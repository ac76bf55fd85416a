// SPDX-License-Identifier: MIT
// How old a value may be.
#ifndef MAXIMUMAGE_H
#define MAXIMUMAGE_H

#include "Finding.h"
#include "LeafValue.h"

/// Finds values that nobody has refreshed for too long.
class MaximumAge
{
public:
    /// @param milliseconds  0: any age will do
    explicit MaximumAge(int milliseconds = 0)
        : milliseconds(milliseconds)
    {
    }

    /// Finding::Stale for an older value, and for a good one without a time; else None. What was
    /// never published is not older than anything.
    ///
    /// @param now  nanoseconds since the epoch
    Finding judge(const LeafValue &value, qint64 now) const;

private:
    int milliseconds;
};

#endif
