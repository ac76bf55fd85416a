// SPDX-License-Identifier: MIT
// When an announcement came out of the bus connection's socket.
#include "Arrival.h"

#include <atomic>
#include <cstring>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

const char member[] = "ProcessDataDescriptionChanged";
constexpr ssize_t largestAnnouncement = 2048; // bytes; descriptions come in larger pieces

std::atomic<bool> expected{false};
std::atomic<bool> seen{false};
std::atomic<Arrival::Clock::time_point> arrival{Arrival::Clock::time_point()};

void look(const msghdr &message, ssize_t size)
{
    const auto now = Arrival::Clock::now();
    if (message.msg_iovlen == 1
        && memmem(message.msg_iov->iov_base, size_t(size), member, sizeof(member)) != nullptr
        && expected.exchange(false)) {
        arrival = now;
        seen = true;
    }
}

} // namespace

// This definition is found before the C library's own.
extern "C" __attribute__((visibility("default"))) ssize_t recvmsg(int descriptor, msghdr *message,
                                                                  int flags)
{
    const ssize_t size = syscall(SYS_recvmsg, descriptor, message, flags);
    if (size > 0 && size < largestAnnouncement && expected) {
        look(*message, size);
    }
    return size;
}

void Arrival::expect()
{
    seen = false;
    expected = true;
}

std::optional<Arrival::Clock::time_point> Arrival::time()
{
    return seen ? std::optional(arrival.load()) : std::nullopt;
}
