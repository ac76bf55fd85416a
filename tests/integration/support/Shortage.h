// SPDX-License-Identifier: MIT
// Takes from this process what others might have used up.
#ifndef SHORTAGE_H
#define SHORTAGE_H

#include <QFile>
#include <QVector>

#include <algorithm>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

/// Lowers one limit while it lives.
class LoweredLimit
{
public:
    LoweredLimit(__rlimit_resource resource, rlim_t limit)
        : resource(resource)
    {
        ::getrlimit(resource, &before);
        rlimit lowered = before;
        lowered.rlim_cur = std::min(before.rlim_cur, limit);
        ::setrlimit(resource, &lowered);
    }
    ~LoweredLimit() { ::setrlimit(resource, &before); }
    LoweredLimit(const LoweredLimit &) = delete;
    LoweredLimit &operator=(const LoweredLimit &) = delete;

private:
    const __rlimit_resource resource;
    rlimit before{};
};

/// No file can be opened while it lives.
class DescriptorShortage
{
public:
    DescriptorShortage()
        : limit(RLIMIT_NOFILE, 512)
    {
        for (int taken = ::open("/dev/null", O_RDONLY | O_CLOEXEC); taken != -1;
             taken = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) {
            all += taken;
        }
    }
    ~DescriptorShortage()
    {
        for (const int taken : qAsConst(all)) {
            ::close(taken);
        }
    }
    DescriptorShortage(const DescriptorShortage &) = delete;
    DescriptorShortage &operator=(const DescriptorShortage &) = delete;

private:
    const LoweredLimit limit;
    QVector<int> all;
};

/// Small things still fit, a large mapping does not.
class MemoryShortage
{
public:
    static constexpr int stillFits = 150 * 1024 * 1024;

    MemoryShortage()
        : limit(RLIMIT_AS, used() + stillFits)
    {
    }

private:
    static rlim_t used()
    {
        QFile file("/proc/self/statm");
        file.open(QIODevice::ReadOnly);
        return rlim_t(file.readLine().split(' ').value(0).toULongLong())
            * rlim_t(::sysconf(_SC_PAGESIZE));
    }

    const LoweredLimit limit;
};

#endif
