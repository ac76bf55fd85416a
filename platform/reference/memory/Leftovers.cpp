// SPDX-License-Identifier: MIT
// Buffers that dead publishers of a source left behind.
#include "Leftovers.h"

#include "BufferLife.h"
#include "BufferName.h"
#include "CrashPoint.h"
#include "FileDescriptor.h"
#include "MemoryLog.h"

#include <QVector>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

struct Candidate
{
    QByteArray path;
    quint64 generation;
};

QVector<Candidate> candidates(const QByteArray &prefix)
{
    QVector<Candidate> found;
    DIR *directory = opendir(sharedMemoryDirectory);
    if (directory == nullptr) {
        qCWarning(memoryLog).noquote()
            << "Looking for leftovers in" << sharedMemoryDirectory << "failed:" << errorText(errno);
        return found;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): glibc's readdir is safe for a stream of one's own
    while (const dirent *entry = readdir(directory)) {
        const QByteArray name(entry->d_name);
        if (const auto generation = generationOfFile(name, prefix)) {
            found.append({QByteArray(sharedMemoryDirectory) + '/' + name, *generation});
        }
    }
    closedir(directory);
    return found;
}

void removeFile(const QByteArray &path)
{
    CRASH_POINT();
    if (unlink(path.constData()) == -1 && errno != ENOENT) {
        qCWarning(memoryLog).noquote()
            << "Removing the leftover" << path << "failed:" << errorText(errno);
    }
}

}

quint64 removeLeftovers(const QByteArray &prefix)
{
    quint64 highest = 0;
    const QVector<Candidate> found = candidates(prefix);
    for (const Candidate &candidate : found) {
        const FileDescriptor descriptor(repeatOnSignal([&] {
            return open(candidate.path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        }));
        struct stat status
        {
        };
        if (!descriptor.isValid() || fstat(descriptor.get(), &status) == -1
            || !S_ISREG(status.st_mode) || status.st_uid != geteuid()) {
            continue; // someone else's
        }
        highest = std::max(highest, candidate.generation);
        BufferHeader header{};
        if (isAbandoned(lifeOfBuffer(descriptor.get(), header))) {
            removeFile(candidate.path);
        }
    }
    return highest;
}
