// SPDX-License-Identifier: MIT
// What this process holds: memory, descriptors, threads, mapped buffers.
#include "Footprint.h"
#include "Files.h"

#include <QDir>

#include <malloc.h>
#include <unistd.h>

namespace {

constexpr qint64 heapAllowance = 32 * 1024;
constexpr qint64 residentAllowance = 4 * 1024 * 1024; // whole pages, of several arenas

// AddressSanitizer has an allocator of its own, which keeps what is freed for a while.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool countsMemory = false;
#elif defined(__has_feature)
constexpr bool countsMemory = !__has_feature(address_sanitizer);
#else
constexpr bool countsMemory = true;
#endif

int entriesOf(const char *directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

QByteArray grown(const char *name, qint64 before, qint64 after, qint64 allowance)
{
    return after <= before + allowance ? QByteArray()
                                       : QByteArray(name) + " from " + QByteArray::number(before)
            + " to " + QByteArray::number(after) + "; ";
}

} // namespace

void Footprint::prepare(char **argv)
{
    if (!qEnvironmentVariableIsSet("GLIBC_TUNABLES")) {
        // No caches of threads, and large blocks go back to the system when they are freed: else a
        // thread keeps tens of megabytes for the next one after it got a large message.
        qputenv("GLIBC_TUNABLES",
                "glibc.malloc.tcache_count=0:glibc.malloc.mmap_threshold=131072:"
                "glibc.malloc.trim_threshold=131072");
        ::execv("/proc/self/exe", argv); // without a return; else the test goes on inexactly
    }
}

Footprint Footprint::now()
{
    Footprint found;
    if (countsMemory) {
        ::malloc_trim(0);
        const struct mallinfo2 heap = ::mallinfo2();
        found.heap = qint64(heap.uordblks + heap.hblkhd);
        found.resident = contentOf("/proc/self/statm").split(' ').value(1).toLongLong()
            * ::sysconf(_SC_PAGESIZE);
    }
    found.descriptors = entriesOf("/proc/self/fd");
    found.threads = entriesOf("/proc/self/task");
    found.mappedBuffers = contentOf("/proc/self/maps").count("/dev/shm/processdata.");
    return found;
}

QByteArray Footprint::growthSince(const Footprint &before) const
{
    return grown("heap", before.heap, heap, heapAllowance)
        + grown("resident memory", before.resident, resident, residentAllowance)
        + grown("descriptors", before.descriptors, descriptors, 0)
        + grown("threads", before.threads, threads, 0)
        + grown("mapped buffers", before.mappedBuffers, mappedBuffers, 0);
}

QByteArray Footprint::text() const
{
    return "heap " + QByteArray::number(heap) + ", resident " + QByteArray::number(resident)
        + ", descriptors " + QByteArray::number(descriptors) + ", threads "
        + QByteArray::number(threads) + ", mapped buffers " + QByteArray::number(mappedBuffers);
}
