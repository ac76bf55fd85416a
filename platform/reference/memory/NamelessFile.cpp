// SPDX-License-Identifier: MIT
// Makes files in shared memory that get their name when they are complete.
#include "NamelessFile.h"

#include "BufferName.h"
#include "CrashPoint.h"
#include "FileDescriptor.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

int makeNamelessFile(mode_t mode, quint64 size, QString &error)
{
    const int descriptor = repeatOnSignal([] {
        return open(sharedMemoryDirectory, O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    });
    if (descriptor == -1) {
        error = QStringLiteral("creating a file in %1 failed: %2")
                    .arg(QLatin1String(sharedMemoryDirectory), errorText(errno));
        return -1;
    }
    CRASH_POINT();
    int reason = 0;
    if (repeatOnSignal([&] { return fchmod(descriptor, mode); }) == -1) { // open obeys the umask
        reason = errno;
    } else {
        CRASH_POINT();
        do {
            reason = posix_fallocate(descriptor, 0, off_t(size));
        } while (reason == EINTR);
    }
    if (reason != 0) {
        error = QStringLiteral("getting %1 bytes in %2 failed: %3")
                    .arg(size)
                    .arg(QLatin1String(sharedMemoryDirectory), errorText(reason));
        close(descriptor);
        return -1;
    }
    return descriptor;
}

void *mapNamelessFile(int descriptor, quint64 size, QString &error)
{
    void *base = mmap(nullptr, size_t(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (base == MAP_FAILED) {
        error = QStringLiteral("mapping %1 bytes failed: %2").arg(size).arg(errorText(errno));
        return nullptr;
    }
    return base;
}

int giveName(int descriptor, const QByteArray &path)
{
    const QByteArray source = "/proc/self/fd/" + QByteArray::number(descriptor);
    CRASH_POINT();
    const int result
        = linkat(AT_FDCWD, source.constData(), AT_FDCWD, path.constData(), AT_SYMLINK_FOLLOW);
    const int reason = result == 0 ? 0 : errno;
    CRASH_POINT();
    return reason;
}
