// SPDX-License-Identifier: MIT
// Keeps a process alive when a buffer that it has mapped is cut short.
#include "MappingGuard.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

/// Never freed, but used again: the handler may look at it at any time.
struct GuardedRange
{
    std::atomic<quintptr> begin{0}; // 0: not in use
    std::atomic<quintptr> end{0};
    std::atomic<int> protection{0};
    std::atomic<bool> lost{false};
    GuardedRange *next = nullptr;
};

namespace {

std::atomic<GuardedRange *> firstRange{nullptr};
std::mutex rangesMutex; // of those who add and remove; the handler takes none
struct sigaction previousAction;

static_assert(std::atomic<quintptr>::is_always_lock_free, "a signal handler reads it");

// All of it, not only the page: what is left of the header would tell of a sound buffer.
bool replaceRangeAt(quintptr address)
{
    for (GuardedRange *range = firstRange.load(); range != nullptr; range = range->next) {
        const quintptr begin = range->begin.load();
        const quintptr end = range->end.load();
        if (begin == 0 || address < begin || address >= end || range->begin.load() != begin) {
            continue;
        }
        range->lost = true;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an address is compared, then mapped
        return mmap(reinterpret_cast<void *>(begin), end - begin, range->protection,
                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0)
            != MAP_FAILED;
    }
    return false;
}

void passOn(int number, siginfo_t *info, void *context)
{
    if ((previousAction.sa_flags & SA_SIGINFO) != 0) {
        previousAction.sa_sigaction(number, info, context);
        return;
    }
    const bool sent = info->si_code <= 0; // by a process; else by an access, which is repeated
    if (previousAction.sa_handler == SIG_IGN && sent) {
        return;
    }
    if (previousAction.sa_handler != SIG_DFL && previousAction.sa_handler != SIG_IGN) {
        previousAction.sa_handler(number);
        return;
    }
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(number, &byDefault, nullptr);
    if (sent) {
        static_cast<void>(raise(number));
    }
}

void onBusError(int number, siginfo_t *info, void *context)
{
    const int error = errno;
    if (info->si_code != BUS_ADRERR || !replaceRangeAt(quintptr(info->si_addr))) {
        passOn(number, info, context);
    }
    errno = error;
}

// Caller holds rangesMutex.
void installHandler()
{
    static bool installed = false;
    if (installed) {
        return;
    }
    installed = true;
    sigaction(SIGBUS, nullptr, &previousAction); // before ours can be called
    struct sigaction action = {};
    action.sa_sigaction = onBusError;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
}

// Caller holds rangesMutex.
GuardedRange *unusedRange()
{
    for (GuardedRange *range = firstRange.load(); range != nullptr; range = range->next) {
        if (range->begin.load() == 0) {
            return range;
        }
    }
    auto *range = new GuardedRange;
    range->next = firstRange.load();
    firstRange = range;
    return range;
}

GuardedRange *addRange(void *base, size_t size, bool writable)
{
    const std::lock_guard<std::mutex> locked(rangesMutex);
    installHandler();
    const auto page = quintptr(sysconf(_SC_PAGESIZE));
    GuardedRange *range = unusedRange();
    range->lost = false;
    range->protection = writable ? PROT_READ | PROT_WRITE : PROT_READ;
    range->end = quintptr(base) + (size + page - 1) / page * page;
    range->begin = quintptr(base); // last: the handler knows the range from here on
    return range;
}

}

MappingGuard::MappingGuard(void *base, size_t size, bool writable)
    : range(addRange(base, size, writable))
{
}

MappingGuard::~MappingGuard()
{
    const std::lock_guard<std::mutex> locked(rangesMutex);
    range->begin = 0;
}

bool MappingGuard::isLost() const
{
    return range->lost;
}
