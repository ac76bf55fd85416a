// SPDX-License-Identifier: MIT
// Keeps Qt from what qemu-user says it can and cannot: making a process that a descriptor stands for.
#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

// Linked into every emulated executable, and so before glibc's. Qt asks by a waitid for such a descriptor whether
// the kernel knows them, and gets the host's yes; the clone that makes one is refused by the emulator.
extern "C" __attribute__((visibility("default"))) long syscall(long number, ...) noexcept
{
    using Function = long (*)(long, ...);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "syscall"));
    va_list list;
    va_start(list, number);
    long arguments[6];
    for (long &argument : arguments) {
        argument = va_arg(list, long);
    }
    va_end(list);
    constexpr long pidfd = 3; // P_PIDFD, which glibc 2.36 has
    if (number == SYS_waitid && arguments[0] == pidfd) {
        errno = EINVAL;
        return -1;
    }
    return next(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                arguments[5]);
}
