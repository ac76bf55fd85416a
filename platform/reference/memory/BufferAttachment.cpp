// SPDX-License-Identifier: MIT
// Maps the buffer that a description names, after checking all that the two say of each other.
#include "BufferAttachment.h"

#include "BufferName.h"
#include "FileDescriptor.h"
#include "SharedLock.h"

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

struct OpenBuffer
{
    int descriptor;
    SharedMemoryPrivate::Access access;
};

// O_NONBLOCK: a named pipe under the buffer's name must not hold us up.
int openFile(const QByteArray &path, int mode)
{
    return repeatOnSignal(
        [&] { return open(path.constData(), mode | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK); });
}

OpenBuffer openBuffer(const QByteArray &path)
{
    const int descriptor = openFile(path, O_RDWR);
    if (descriptor == -1 && (errno == EACCES || errno == EROFS)) {
        return {openFile(path, O_RDONLY), SharedMemoryPrivate::ReadOnly};
    }
    return {descriptor, SharedMemoryPrivate::ReadWrite};
}

QString openingFailed(const QByteArray &path, int reason)
{
    struct stat status
    {
    };
    if (reason == EACCES && stat(path.constData(), &status) == 0) {
        return QStringLiteral(
                   "%1; reading it takes membership in the group with id %2 (its mode is %3)")
            .arg(errorText(reason))
            .arg(status.st_gid)
            .arg(QString::number(status.st_mode & 07777U, 8));
    }
    switch (reason) {
    case ENOENT:
        return QStringLiteral("it does not exist; its publisher has ended or made a new one");
    case ELOOP:
        return QStringLiteral("it is a symbolic link and no regular file");
    case EISDIR:
        return QStringLiteral("it is a directory and no regular file");
    default:
        return errorText(reason);
    }
}

QString differs(const char *what, quint64 found, quint64 expected)
{
    return QStringLiteral("its %1 is %2, expected %3")
        .arg(QLatin1String(what))
        .arg(found)
        .arg(expected);
}

QString checkFile(const struct stat &status, const BufferDescription &expected, AttachStep &step)
{
    step = AttachStep::File;
    if (!S_ISREG(status.st_mode)) {
        return QStringLiteral("it is no regular file");
    }
    step = AttachStep::Permission;
    if (status.st_uid != expected.ownerUid) {
        return differs("owner's user id", status.st_uid, expected.ownerUid);
    }
    step = AttachStep::Layout;
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
        return QStringLiteral("it is no process-data buffer");
    }
    if (header.layoutVersion != bufferLayoutVersion) {
        return differs("layout version", header.layoutVersion, bufferLayoutVersion);
    }
    if (header.abiTag != bufferAbiTag) {
        return QStringLiteral("its publisher has %1, this process has %2; they cannot share it")
            .arg(abiText(header.abiTag), abiText(bufferAbiTag));
    }
    if (!isSharedLock(header.livenessLock) || !isSharedLock(header.writersLock)) {
        return QStringLiteral("its locks are not of the kind that this process uses");
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
    if (header.state != BufferActive && header.state != BufferRetired) {
        return QStringLiteral("it is not complete (state %1)").arg(header.state);
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

QSharedPointer<SharedMemoryPrivate> mapBuffer(const OpenBuffer &buffer, size_t size, QString &error)
{
    const int protection
        = buffer.access == SharedMemoryPrivate::ReadWrite ? PROT_READ | PROT_WRITE : PROT_READ;
    void *base = mmap(nullptr, size, protection, MAP_SHARED, buffer.descriptor, 0);
    if (base == MAP_FAILED) {
        error = QStringLiteral("mapping it failed: %1").arg(errorText(errno));
        return {};
    }
    auto memory = QSharedPointer<SharedMemoryPrivate>::create(base, size, buffer.access);
    memory->guard();
    return memory;
}

}

QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error, AttachStep &step)
{
    step = AttachStep::File;
    const QByteArray path = sharedMemoryPath(description.buffer->name);
    if (path.isEmpty()) {
        error = QStringLiteral("its name is not that of a shared-memory object");
        return {};
    }
    const OpenBuffer buffer = openBuffer(path);
    if (buffer.descriptor == -1) {
        step = errno == EACCES || errno == EPERM ? AttachStep::Permission : AttachStep::File;
        error = openingFailed(path, errno);
        return {};
    }
    const FileDescriptor descriptor(buffer.descriptor);
    struct stat status
    {
    };
    if (fstat(buffer.descriptor, &status) == -1) {
        error = errorText(errno);
        return {};
    }
    QString reason = checkFile(status, *description.buffer, step);
    if (reason.isEmpty()) {
        reason = checkContent(buffer.descriptor, description);
    }
    if (!reason.isEmpty()) {
        error = reason;
        return {};
    }
    auto mapping = mapBuffer(buffer, size_t(description.buffer->size), error);
    step = mapping.isNull() ? AttachStep::Layout : AttachStep::Mapped;
    return mapping;
}

QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error)
{
    AttachStep step = AttachStep::File;
    return attachBuffer(description, error, step);
}
