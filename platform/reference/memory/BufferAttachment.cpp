// SPDX-License-Identifier: MIT
// Maps the buffer that a description names, after checking all that the two say of each other.
#include "BufferAttachment.h"

#include "BufferLife.h"
#include "BufferName.h"
#include "FileDescriptor.h"
#include "SharedLock.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <memory>
#include <sys/mman.h>
#include <utility>

namespace {

QString checkSize(const struct stat &status, const BufferDescription &expected)
{
    if (quint64(status.st_size) != expected.size) {
        return differs("file size", quint64(status.st_size), expected.size);
    }
    if (expected.size < sizeof(BufferHeader)
        || expected.size > std::numeric_limits<ptrdiff_t>::max()) {
        return QStringLiteral("its size %1 is impossible").arg(expected.size);
    }
    return QString();
}

QString abiText(quint32 tag)
{
    return QStringLiteral("%1-bit words and locks of %2 bytes")
        .arg((tag >> bufferAbiWordShift) * CHAR_BIT)
        .arg(tag & bufferAbiLockMask);
}

QString checkHeader(const BufferHeader &header, const ProcessDataDescription &description)
{
    if (!std::equal(std::begin(bufferMagic), std::end(bufferMagic), header.magic)) {
        return QStringLiteral("it is not a process-data buffer");
    }
    if (header.layoutVersion != bufferLayoutVersion) {
        return otherLayout(header.layoutVersion);
    }
    if (header.abiTag != bufferAbiTag) {
        return QStringLiteral("its publisher has %1, this process has %2; they cannot share it")
            .arg(abiText(header.abiTag), abiText(bufferAbiTag));
    }
    if (!isSharedLock(header.writersLock)) {
        return QStringLiteral("its lock is not of the kind that this process uses");
    }
    if (header.headerSize != sizeof(BufferHeader)) {
        return differs("header size", header.headerSize, sizeof(BufferHeader));
    }
    if (header.bufferSize != description.buffer->size) {
        return differs("size by its header", header.bufferSize, description.buffer->size);
    }
    if (header.generation != description.buffer->generation) {
        return differs("generation", header.generation, description.buffer->generation);
    }
    if (header.slotCount != quint32(description.leaves.size())) {
        return differs("number of slots", header.slotCount, quint64(description.leaves.size()));
    }
    return QString();
}

QString checkSlots(const ProcessDataDescription &description)
{
    const quint64 end = description.buffer->size;
    for (const LeafDescription &leaf : description.leaves) {
        const quint64 size = slotSize(leaf.type, leaf.capacity);
        if (leaf.offset % slotAlignment != 0 || leaf.offset < sizeof(BufferHeader) || size > end
            || leaf.offset > end - size) {
            return QStringLiteral("leaf \"%1\" at offset %2 lies outside of it")
                .arg(leaf.path)
                .arg(leaf.offset);
        }
    }
    return QString();
}

QString checkContent(int descriptor, const ProcessDataDescription &description)
{
    BufferHeader header{}; // a copy: another process may change the original between two looks
    const ssize_t got
        = repeatOnSignal([&] { return pread(descriptor, &header, sizeof(header), 0); });
    if (got == -1) {
        return errorText(errno);
    }
    if (size_t(got) < sizeof(header)) {
        return QStringLiteral("it is shorter than its header");
    }
    const QString error = checkHeader(header, description);
    return error.isEmpty() ? checkSlots(description) : error;
}

QSharedPointer<SharedMemoryPrivate> mapBuffer(const ObjectFile &buffer, size_t size,
                                              std::unique_ptr<LifeMapping> life, QString &error)
{
    const int protection = buffer.writable ? PROT_READ | PROT_WRITE : PROT_READ;
    void *base = mmap(nullptr, size, protection, MAP_SHARED, buffer.descriptor, 0);
    if (base == MAP_FAILED) {
        error = QStringLiteral("mapping it failed: %1").arg(errorText(errno));
        return {};
    }
    auto memory = QSharedPointer<SharedMemoryPrivate>::create(
        base, size,
        buffer.writable ? SharedMemoryPrivate::ReadWrite : SharedMemoryPrivate::ReadOnly);
    memory->guard();
    memory->watch(std::move(life));
    return memory;
}

}

QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error, BufferInspection::Step &step)
{
    step = BufferInspection::File;
    const QByteArray path = sharedMemoryPath(description.buffer->name);
    if (path.isEmpty()) {
        error = QStringLiteral("its name is not that of a shared-memory object");
        return {};
    }
    // Where the name ends otherwise, somebody else's file was given this name.
    if (generationOfName(path) != description.buffer->generation) {
        step = BufferInspection::Layout;
        error = QStringLiteral("its name is not that of a buffer of generation %1")
                    .arg(description.buffer->generation);
        return {};
    }
    const ObjectFile buffer
        = openObject(path, description.buffer->ownerUid, ObjectAccess::ReadWriteIfAllowed);
    const FileDescriptor descriptor(buffer.descriptor);
    step = buffer.error.isEmpty() ? BufferInspection::Layout : buffer.step;
    QString reason = buffer.error;
    if (reason.isEmpty()) {
        reason = checkSize(buffer.status, *description.buffer);
    }
    if (reason.isEmpty()) {
        reason = checkContent(buffer.descriptor, description);
    }
    if (!reason.isEmpty()) {
        error = reason;
        return {};
    }
    std::unique_ptr<LifeMapping> life = attachLife(*description.buffer, error, step);
    if (life == nullptr) {
        return {};
    }
    auto mapping = mapBuffer(buffer, size_t(description.buffer->size), std::move(life), error);
    step = mapping.isNull() ? BufferInspection::Layout : BufferInspection::Liveness;
    return mapping;
}

QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error)
{
    BufferInspection::Step step = BufferInspection::File;
    return attachBuffer(description, error, step);
}
