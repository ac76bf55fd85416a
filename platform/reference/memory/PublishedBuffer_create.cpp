// SPDX-License-Identifier: MIT
// Makes a publisher's buffer: layout, memory, locks, and its name last of all.
#include "PublishedBuffer.h"

#include "BufferName.h"
#include "CrashPoint.h"
#include "FileDescriptor.h"
#include "Leftovers.h"
#include "LivenessKeeper.h"
#include "PublishedBufferPrivate.h"
#include "SharedLock.h"

#include "ProcessDataDefinitions.h"

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

constexpr mode_t modeWithWritableLeaf = 0660;
constexpr mode_t modeReadOnly = 0640;
constexpr int nameAttempts = 16;

// Gives the liveness lock up again unless the buffer was completed.
class LivenessHold
{
public:
    explicit LivenessHold(pthread_mutex_t *lock)
        : lock(lock)
        , lastError(LivenessKeeper::instance().hold(lock))
    {
    }
    ~LivenessHold()
    {
        if (lastError == 0 && !kept) {
            LivenessKeeper::instance().release(lock);
        }
    }
    LivenessHold(const LivenessHold &) = delete;
    LivenessHold &operator=(const LivenessHold &) = delete;

    int error() const { return lastError; }
    void keep() { kept = true; }

private:
    pthread_mutex_t *const lock;
    const int lastError;
    bool kept = false;
};

// Since the start of the machine, and /dev/shm is as old: a later publisher has a higher number.
quint64 newGeneration(quint64 highest)
{
    constexpr quint64 microsecondsPerSecond = 1'000'000;
    constexpr quint64 nanosecondsPerMicrosecond = 1'000;
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const quint64 clock = quint64(now.tv_sec) * microsecondsPerSecond
        + quint64(now.tv_nsec) / nanosecondsPerMicrosecond;
    return highest < maximumGeneration ? std::max(clock, highest + 1) : clock;
}

bool layOut(QVector<LeafDescription> &leaves, quint64 &size, QString &error)
{
    size = sizeof(BufferHeader);
    for (LeafDescription &leaf : leaves) {
        leaf.offset = size;
        size += slotSize(leaf.type, leaf.capacity);
        if (size > quint64(std::numeric_limits<ptrdiff_t>::max())) {
            error = QStringLiteral("the buffer is too large from leaf \"%1\" on").arg(leaf.path);
            return false;
        }
    }
    return true;
}

// A file without a name: whoever is killed before it is complete leaves nothing behind, and nobody
// else sees it before.
int makeFile(mode_t mode, quint64 size, QString &error)
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
        // All pages now: a full file system is an error here and no SIGBUS at the first write.
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

std::unique_ptr<SharedMemoryPrivate> mapFile(int descriptor, quint64 size, QString &error)
{
    void *base = mmap(nullptr, size_t(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (base == MAP_FAILED) {
        error = QStringLiteral("mapping %1 bytes failed: %2").arg(size).arg(errorText(errno));
        return nullptr;
    }
    return std::make_unique<SharedMemoryPrivate>(base, size_t(size),
                                                 SharedMemoryPrivate::ReadWrite);
}

bool fillHeader(BufferHeader &header, quint64 size, int slotCount, QString &error)
{
    CRASH_POINT();
    std::copy(std::begin(bufferMagic), std::end(bufferMagic), header.magic);
    CRASH_POINT();
    header.layoutVersion = bufferLayoutVersion;
    CRASH_POINT();
    header.headerSize = sizeof(BufferHeader);
    CRASH_POINT();
    header.bufferSize = size;
    CRASH_POINT();
    header.slotCount = quint32(slotCount);
    CRASH_POINT();
    header.abiTag = bufferAbiTag;
    setBufferState(header, BufferBuilding);
    const int livenessError = initializeSharedLock(header.livenessLock);
    const int reason
        = livenessError != 0 ? livenessError : initializeSharedLock(header.writersLock);
    if (reason != 0) {
        error = QStringLiteral("making a lock failed: %1").arg(errorText(reason));
    }
    return reason == 0;
}

void fillSlots(const SharedMemoryPrivate &memory, const QVector<LeafDescription> &leaves)
{
    const SlotHead neverPublished{ProcessDataDefinitions::NotInitialized, slotWithoutValue, 0};
    for (const LeafDescription &leaf : leaves) {
        char *copy
            = memory.at(leaf.offset) + slotCopyOffset(0, payloadSize(leaf.type, leaf.capacity));
        storeSlotWords(copy, &neverPublished, sizeof(neverPublished) / sizeof(SlotWord));
    }
}

// The name is taken only if it is free; a squatter on one generation costs the next number.
bool nameFile(int descriptor, const QByteArray &prefix, BufferHeader &header, QByteArray &path,
              QString &error)
{
    const QByteArray source = "/proc/self/fd/" + QByteArray::number(descriptor);
    for (int attempt = 0; attempt < nameAttempts; ++attempt, ++header.generation) {
        path = QByteArray(sharedMemoryDirectory) + '/' + prefix
            + QByteArray::number(header.generation);
        CRASH_POINT();
        if (linkat(AT_FDCWD, source.constData(), AT_FDCWD, path.constData(), AT_SYMLINK_FOLLOW)
            == 0) {
            CRASH_POINT();
            return true;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    error = QStringLiteral("giving the buffer its name %1 failed: %2")
                .arg(QString::fromUtf8(path), errorText(errno));
    return false;
}

mode_t modeFor(const QVector<LeafDescription> &leaves)
{
    const bool writable = std::any_of(leaves.cbegin(), leaves.cend(),
                                      [](const LeafDescription &leaf) { return !leaf.readOnly; });
    return writable ? modeWithWritableLeaf : modeReadOnly;
}

}

std::unique_ptr<PublishedBuffer> PublishedBuffer::create(ProcessDataDescription &description,
                                                         QString &error)
{
    auto state = std::make_unique<PublishedBufferPrivate>();
    state->leaves = description.leaves;
    state->owner = getpid();
    quint64 size = 0;
    if (!layOut(state->leaves, size, error)) {
        return nullptr;
    }
    const QByteArray prefix
        = bufferNamePrefix(description.module, description.object, description.instance);
    const quint64 highest = removeLeftovers(prefix);
    const FileDescriptor file(makeFile(modeFor(state->leaves), size, error));
    if (!file.isValid() || !(state->memory = mapFile(file.get(), size, error))) {
        return nullptr;
    }
    BufferHeader &header = state->memory->header();
    if (!fillHeader(header, size, state->leaves.size(), error)) {
        return nullptr;
    }
    LivenessHold liveness(&header.livenessLock.mutex);
    if (liveness.error() != 0) {
        error = QStringLiteral("taking the liveness lock failed: %1")
                    .arg(errorText(liveness.error()));
        return nullptr;
    }
    fillSlots(*state->memory, state->leaves);
    CRASH_POINT();
    header.generation = newGeneration(highest);
    setBufferState(header, BufferActive);
    if (!nameFile(file.get(), prefix, header, state->path, error)) {
        return nullptr;
    }
    liveness.keep();
    state->startDetection();
    state->name
        = QLatin1Char('/') + QString::fromLatin1(prefix + QByteArray::number(header.generation));
    description.leaves = state->leaves;
    description.buffer
        = BufferDescription{state->name, header.generation, size, quint32(geteuid())};
    return std::unique_ptr<PublishedBuffer>(new PublishedBuffer(std::move(state)));
}
