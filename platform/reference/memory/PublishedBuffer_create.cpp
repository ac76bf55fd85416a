// SPDX-License-Identifier: MIT
// Makes a publisher's buffer: layout, memory, locks, and its name last of all.
#include "PublishedBuffer.h"

#include "BufferName.h"
#include "CrashPoint.h"
#include "FileDescriptor.h"
#include "Leftovers.h"
#include "NamelessFile.h"
#include "PublishedBufferPrivate.h"
#include "SharedLock.h"

#include "ProcessDataDefinitions.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <limits>

namespace {

constexpr mode_t modeWithWritableLeaf = 0660;
constexpr mode_t modeReadOnly = 0640;
constexpr int nameAttempts = 24; // the last one goes 8 seconds ahead

// Since the start of the machine, and /dev/shm is as old: a later publisher has a higher number.
// Each further attempt goes twice as far, past whoever sits on the numbers that come next.
quint64 newGeneration(int attempt)
{
    static std::atomic<quint64> latest{0};
    constexpr quint64 microsecondsPerSecond = 1'000'000;
    constexpr quint64 nanosecondsPerMicrosecond = 1'000;
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const quint64 clock = quint64(now.tv_sec) * microsecondsPerSecond
        + quint64(now.tv_nsec) / nanosecondsPerMicrosecond + (quint64(1) << attempt) - 1;
    quint64 before = latest;
    quint64 generation = 0;
    do {
        generation = std::max(clock, before + 1);
    } while (!latest.compare_exchange_weak(before, generation));
    return generation;
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
    const int reason = initializeSharedLock(header.writersLock);
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

// Names are taken only if they are free: first the record's, then the buffer's.
bool nameBuffer(int descriptor, const QByteArray &prefix, PublishedBufferPrivate &state,
                QString &error)
{
    BufferHeader &header = state.memory->header();
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        header.generation = newGeneration(attempt);
        state.path = QByteArray(sharedMemoryDirectory) + '/' + prefix
            + QByteArray::number(header.generation);
        int reason = 0;
        state.life = PublishedLife::create(state.path, header.generation, reason, error);
        if (state.life != nullptr) {
            reason = giveName(descriptor, state.path);
            if (reason == 0) {
                state.life->activate();
                return true;
            }
            state.life.reset();
            error = QStringLiteral("giving the buffer its name %1 failed: %2")
                        .arg(QString::fromUtf8(state.path), errorText(reason));
        }
        if (reason != EEXIST) {
            break;
        }
    }
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
    quint64 size = 0;
    if (!layOut(state->leaves, size, error)) {
        return nullptr;
    }
    const QByteArray prefix = bufferNamePrefix(description.source);
    removeLeftovers(prefix);
    const FileDescriptor file(makeNamelessFile(modeFor(state->leaves), size, error));
    void *base = file.isValid() ? mapNamelessFile(file.get(), size, error) : nullptr;
    if (base == nullptr) {
        return nullptr;
    }
    state->memory
        = std::make_unique<SharedMemoryPrivate>(base, size_t(size), SharedMemoryPrivate::ReadWrite);
    state->memory->guard();
    const BufferHeader &header = state->memory->header();
    if (!fillHeader(state->memory->header(), size, state->leaves.size(), error)) {
        return nullptr;
    }
    fillSlots(*state->memory, state->leaves);
    CRASH_POINT();
    if (!nameBuffer(file.get(), prefix, *state, error)) {
        return nullptr;
    }
    state->startDetection();
    state->name
        = QLatin1Char('/') + QString::fromLatin1(prefix + QByteArray::number(header.generation));
    description.leaves = state->leaves;
    description.buffer
        = BufferDescription{state->name, header.generation, size, quint32(geteuid())};
    return std::unique_ptr<PublishedBuffer>(new PublishedBuffer(std::move(state)));
}
