// SPDX-License-Identifier: MIT
// Whether a publisher stands behind a buffer, told by the record beside it.
#include "BufferLife.h"

#include "BufferName.h"
#include "FileDescriptor.h"

#include <algorithm>
#include <sys/mman.h>

namespace {

// A copy of the record, read with a system call: it may be cut short at any time.
QString readRecord(int descriptor, LifeRecord &record)
{
    const ssize_t got
        = repeatOnSignal([&] { return pread(descriptor, &record, sizeof(record), 0); });
    if (got == -1) {
        return errorText(errno);
    }
    return size_t(got) < sizeof(record)
        ? QStringLiteral("its %1 bytes are fewer than it must have").arg(got)
        : QString();
}

QString checkRecord(const LifeRecord &record, const QByteArray &bufferName)
{
    if (!std::equal(std::begin(lifeMagic), std::end(lifeMagic), record.magic)) {
        return QStringLiteral("it does not begin like one");
    }
    if (record.layoutVersion != bufferLayoutVersion) {
        return otherLayout(record.layoutVersion);
    }
    if (record.recordSize != sizeof(LifeRecord)) {
        return differs("size by its content", record.recordSize, sizeof(LifeRecord));
    }
    const QByteArray named(record.bufferName, int(qstrnlen(record.bufferName, lifeNameRoom)));
    if (named != bufferName) {
        return QStringLiteral("it belongs to %1").arg(QString::fromUtf8(named));
    }
    const auto generation = generationOfName(bufferName);
    if (!generation || record.generation != *generation) {
        return differs("generation", record.generation, generation.value_or(0));
    }
    if (record.state < BufferBuilding || record.state > BufferRetired) {
        return QStringLiteral("its state is %1").arg(record.state);
    }
    return QString();
}

// The object, checked; its descriptor is the caller's to close.
ObjectFile openRecord(const QByteArray &bufferPath, quint32 ownerUid, LifeRecord &record)
{
    const QByteArray path = bufferPath + lifeNameEnd;
    ObjectFile file = openObject(path, ownerUid, ObjectAccess::ReadOnly);
    if (file.error.isEmpty()) {
        file.step = BufferInspection::Layout;
        file.error = readRecord(file.descriptor, record);
    }
    if (file.error.isEmpty()) {
        file.error = checkRecord(record, bufferPath.mid(bufferPath.lastIndexOf('/') + 1));
    }
    if (!file.error.isEmpty()) {
        file.error = QStringLiteral("the record of its publisher's life, %1, cannot be used: %2")
                         .arg(QString::fromUtf8(path), file.error);
    }
    return file;
}

}

std::optional<BufferFile::State> lifeOfBuffer(const QByteArray &bufferPath, quint32 ownerUid,
                                              QString &problem)
{
    LifeRecord record{};
    const ObjectFile file = openRecord(bufferPath, ownerUid, record);
    const FileDescriptor descriptor(file.descriptor);
    if (!file.error.isEmpty()) {
        problem = file.error;
        return file.reason == EACCES ? std::make_optional(BufferFile::Unreadable) : std::nullopt;
    }
    if (record.state == BufferRetired) {
        return BufferFile::Retired;
    }
    // A record gets its name only after its publisher holds the lock, so a lock without an owner
    // means death in every state.
    return isLockOwnerAlive(lockWord(record.lock)) ? BufferFile::Live : BufferFile::Dead;
}

LifeMapping::~LifeMapping()
{
    guard.reset(); // first: the addresses may be another mapping's at once
    munmap(base, sizeof(LifeRecord));
}

std::unique_ptr<LifeMapping> attachLife(const BufferDescription &buffer, QString &error,
                                        BufferInspection::Step &step)
{
    LifeRecord record{};
    const ObjectFile file = openRecord(sharedMemoryPath(buffer.name), buffer.ownerUid, record);
    const FileDescriptor descriptor(file.descriptor);
    step = file.step;
    if (!file.error.isEmpty()) {
        error = file.error;
        return nullptr;
    }
    step = BufferInspection::Layout;
    if (record.state == BufferBuilding) {
        error = QStringLiteral("it is not complete");
        return nullptr;
    }
    void *base = mmap(nullptr, sizeof(LifeRecord), PROT_READ, MAP_SHARED, file.descriptor, 0);
    if (base == MAP_FAILED) {
        error = QStringLiteral("mapping the record of its publisher's life failed: %1")
                    .arg(errorText(errno));
        return nullptr;
    }
    step = BufferInspection::Liveness;
    return std::make_unique<LifeMapping>(base);
}
