// SPDX-License-Identifier: MIT
// Reads and writes one leaf's value in shared memory.
#include "ProcessDataValue.h"

#include "BufferName.h"
#include "FileDescriptor.h"
#include "LeafBlock.h"
#include "MemoryLog.h"
#include "ProcessDataLeaf.h"
#include "SharedLock.h"
#include "SlotValue.h"

// A slot that is read after its publisher was seen gone holds the last value. One that was read before may not:
// the publisher could write once more and go in between.

// What is read most, straight through; all else, the first meeting with a writer too, goes round by
// readAny, whose registers need not be saved here.
inline bool ProcessDataValuePrivate::read(ProcessValue &value) const
{
    if (Q_LIKELY(isReadableDouble)) {
        prefetchSlotsBehind(slot);
        NumberCopy copy;
        if (Q_LIKELY(tryReadNumberSlot(slot, copy) && copy.head.length == sizeof(double)
                     && isLifeAsMarked(*block->life, block->mark)
                     && isLockOwnerAlive(lockWord(block->life->lock)))) {
            value.setNumber(numberIn<double>(copy), errorTypeOf(copy.head.status),
                            copy.head.timestamp);
            return true;
        }
    }
    return readAny(value);
}

ProcessDataValue::ProcessDataValue(ProcessDataValuePrivate *state)
    : d(state)
{
}

ProcessDataValue::~ProcessDataValue() = default;

bool ProcessDataValue::getValue(ProcessValue &value, bool flag) const
{
    Q_UNUSED(flag)
    return d->read(value);
}

bool ProcessDataValue::setValue(const ProcessValue &value)
{
    QString error;
    const LeafDescription &description = static_cast<const ProcessDataLeaf *>(this)->description();
    if (!d->write(description, value, error)) {
        qCWarning(memoryLog).noquote() << "Leaf" << description.path << "was not written:" << error;
        return false;
    }
    return true;
}

// Nothing is left of a buffer that somebody cut short, so every length there is 0.
inline bool ProcessDataValuePrivate::isLost(quint32 length) const
{
    return !isBufferLive(*block->life) || (Q_UNLIKELY(length == 0) && block->memory->isCutShort());
}

// The announcement is on its way, or was dropped: who goes on reading has the service asked.
inline void ProcessDataValuePrivate::noteIfOutdated() const
{
    if (Q_UNLIKELY(bufferRevision(*block->life) != block->mark.revision)) {
        block->watch->noteLostRead();
    }
}

bool ProcessDataValuePrivate::readAny(ProcessValue &value) const
{
    if (slot == nullptr) {
        return false;
    }
    if (type == ValueType::String || type == ValueType::Bytes) {
        return readBytes(value);
    }
    NumberCopy copy;
    if (!readNumberSlot(slot, copy)) {
        return false;
    }
    auto errorType = errorTypeOf(copy.head.status);
    if (isLost(copy.head.length)) {
        if (!readNumberSlot(slot, copy)) {
            return false;
        }
        errorType = ProcessDataDefinitions::SourceLost;
        block->watch->noteLostRead();
    } else {
        noteIfOutdated();
    }
    setFromNumber(value, type, payloadSize, copy, errorType);
    return true;
}

bool ProcessDataValuePrivate::readBytes(ProcessValue &value) const
{
    SlotHead head;
    QByteArray payload;
    if (!readSlot(slot, payloadSize, head, payload)) {
        return false;
    }
    if (isLost(head.length)) {
        if (!readSlot(slot, payloadSize, head, payload)) {
            return false;
        }
        head.status = ProcessDataDefinitions::SourceLost;
        block->watch->noteLostRead();
    } else {
        noteIfOutdated();
    }
    setFromSlot(value, type, head, payload);
    return true;
}

bool ProcessDataValuePrivate::write(const LeafDescription &description, const ProcessValue &value,
                                    QString &error) const
{
    if (description.readOnly) {
        error = QStringLiteral("it is read-only");
        return false;
    }
    if (block->memory.isNull() || !block->memory->isWritable()) {
        const QString name = block->description.buffer->name;
        error = QStringLiteral(
                    "this process may not write to buffer %1; that takes the right to write %2")
                    .arg(name, QString::fromUtf8(sharedMemoryPath(name)));
        return false;
    }
    QByteArray payload;
    if (!encodeValue(description, value.getValue(), payload, error)) {
        return false;
    }
    BufferHeader &shared = block->memory->header();
    const WritersLockGuard lock(shared.writersLock);
    if (lock.error() != 0) {
        error = QStringLiteral("buffer %1 could not be locked for writing: %2")
                    .arg(block->description.buffer->name, errorText(lock.error()));
        return false;
    }
    if (!isBufferLive(*block->life)) { // nobody would ever see the value
        error = QStringLiteral("the publisher of buffer %1 is gone")
                    .arg(block->description.buffer->name);
        return false;
    }
    const qint64 timestamp = value.getTimestamp() != 0 ? value.getTimestamp() : currentTimestamp();
    writeSlot(block->memory->at(description.offset), payloadSize,
              {quint32(value.getErrorType()), quint32(payload.size()), timestamp},
              payload.constData());
    return true;
}
