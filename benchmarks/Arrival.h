// SPDX-License-Identifier: MIT
// When an announcement came out of the bus connection's socket.
#ifndef ARRIVAL_H
#define ARRIVAL_H

#include <chrono>
#include <optional>

/// Taken in the thread that reads the socket, before anything looks at the message. A thread of its
/// own for it would compete with those that are measured: on two processors it often ran after they
/// had begun.
class Arrival
{
public:
    using Clock = std::chrono::steady_clock;

    /// The next announcement is the one; later ones are not looked at.
    static void expect();

    /// Nothing when none has come since.
    static std::optional<Clock::time_point> time();
};

#endif
