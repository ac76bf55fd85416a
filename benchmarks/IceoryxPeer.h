// SPDX-License-Identifier: MIT
// Samples of 8 bytes through iceoryx.
#ifndef ICEORYXPEER_H
#define ICEORYXPEER_H

#include <memory>

/// Publisher, subscriber and the memory's manager in this process: no transport is cheaper.
class IceoryxPeer
{
public:
    IceoryxPeer();
    ~IceoryxPeer();
    IceoryxPeer(const IceoryxPeer &) = delete;
    IceoryxPeer &operator=(const IceoryxPeer &) = delete;

    /// Publishes samples, then takes them.
    ///
    /// @returns seconds of one take
    double secondsOfTake();

private:
    struct Private;
    const std::unique_ptr<Private> d;
};

#endif
