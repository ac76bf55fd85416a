// SPDX-License-Identifier: MIT
// Buffers that dead publishers of a source left behind.
#include "Leftovers.h"

#include "BufferLife.h"
#include "BufferName.h"
#include "CrashPoint.h"
#include "FileDescriptor.h"
#include "MemoryLog.h"

#include <QVector>

#include <atomic>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Anybody may fill the directory; beyond this, leftovers wait for selector doctor --clean.
constexpr int mostEntries = 20'000;

void warnOnce()
{
    static std::atomic<bool> warned{false};
    if (!warned.exchange(true)) {
        qCWarning(memoryLog).noquote()
            << "Looking for leftovers in" << sharedMemoryDirectory << "ended after" << mostEntries
            << "files; selector doctor --clean finds the rest";
    }
}

// Of the buffers whose records are there: a record is there before its buffer and after it.
QVector<QByteArray> recordedBuffers(const QByteArray &prefix)
{
    QVector<QByteArray> found;
    DIR *directory = opendir(sharedMemoryDirectory);
    if (directory == nullptr) {
        qCWarning(memoryLog).noquote()
            << "Looking for leftovers in" << sharedMemoryDirectory << "failed:" << errorText(errno);
        return found;
    }
    int entries = 0;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): glibc's readdir is safe for a stream of one's own
    while (const dirent *entry = readdir(directory)) {
        if (++entries > mostEntries) {
            warnOnce();
            break;
        }
        QByteArray name(entry->d_name);
        if (!name.endsWith(lifeNameEnd)) {
            continue;
        }
        name.chop(int(sizeof(lifeNameEnd) - 1));
        if (generationOfFile(name, prefix)) {
            found.append(QByteArray(sharedMemoryDirectory) + '/' + name);
        }
    }
    closedir(directory);
    return found;
}

void removeFile(const QByteArray &path)
{
    struct stat status
    {
    };
    if (lstat(path.constData(), &status) == -1 || !S_ISREG(status.st_mode)
        || status.st_uid != geteuid()) {
        return; // gone, or someone else's
    }
    CRASH_POINT();
    if (unlink(path.constData()) == -1 && errno != ENOENT) {
        qCWarning(memoryLog).noquote()
            << "Removing the leftover" << path << "failed:" << errorText(errno);
    }
}

}

void removeLeftovers(const QByteArray &prefix)
{
    const QVector<QByteArray> found = recordedBuffers(prefix);
    for (const QByteArray &path : found) {
        QString problem;
        const auto life = lifeOfBuffer(path, geteuid(), problem);
        if (life && BufferFile::isLeftOver(*life)) {
            removeFile(path);
            removeFile(path + lifeNameEnd);
        }
    }
}
