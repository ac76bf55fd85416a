// SPDX-License-Identifier: MIT
// The publisher's side of a shared-memory buffer: publish, see client writes, retire.
#include "PublishedBuffer.h"

#include "CrashPoint.h"
#include "FileDescriptor.h"
#include "MemoryLog.h"
#include "PublishedBufferPrivate.h"
#include "SharedLock.h"
#include "SlotValue.h"
#include "ValueCodec.h"

#include <utility>

namespace {

struct PreparedWrite
{
    int leaf;
    bool keepsValue;
    PublishedBufferPrivate::Content content;
};

// The writers' lock, for a publisher: who keeps it from us makes us wait once, not each time.
class PublishersLock
{
public:
    explicit PublishersLock(const PublishedBufferPrivate &d)
        : guard(d.memory->header().writersLock,
                d.lockIsHeld ? WritersLockGuard::NotAtAll : WritersLockGuard::WithinLimit)
    {
        d.lockIsHeld = guard.error() == ETIMEDOUT || guard.error() == EBUSY;
    }

    bool isHeld() const { return guard.error() == 0; }

    QString refusal(const PublishedBufferPrivate &d) const
    {
        if (d.memory->isCutShort()) {
            return QStringLiteral("buffer %1 was cut short by another process that may write it; "
                                  "replaceDescription makes a new one")
                .arg(d.name);
        }
        return QStringLiteral("buffer %1 could not be locked for writing: %2")
            .arg(d.name,
                 guard.error() == EBUSY
                     ? QStringLiteral("another process still holds its lock, which is not waited "
                                      "for again")
                     : errorText(guard.error()));
    }

private:
    const WritersLockGuard guard;
};

bool prepare(const PublishedBufferPrivate &d, const QVector<QPair<int, ProcessValue>> &values,
             std::vector<PreparedWrite> &writes, QString &error)
{
    writes.reserve(size_t(values.size()));
    for (const auto &[leaf, value] : values) {
        if (leaf < 0 || leaf >= d.leaves.size()) {
            error = QStringLiteral("leaf %1 is not one of the %2 of buffer %3")
                        .arg(leaf)
                        .arg(d.leaves.size())
                        .arg(d.name);
            return false;
        }
        PreparedWrite write{leaf, !value.getValue().isValid(), {}};
        if (!write.keepsValue
            && !encodeValue(d.leaves.at(leaf), value.getValue(), write.content.payload, error)) {
            return false;
        }
        write.content.head = {quint32(value.getErrorType()), quint32(write.content.payload.size()),
                              value.getTimestamp()};
        writes.push_back(std::move(write));
    }
    return true;
}

// Caller holds the writers' lock.
void takeStoredValue(const PublishedBufferPrivate &d, PreparedWrite &write)
{
    PublishedBufferPrivate::Content stored;
    const bool known = d.read(write.leaf, stored);
    write.content.head.length = known ? stored.head.length : slotWithoutValue;
    write.content.payload = stored.payload;
}

}

quint32 PublishedBufferPrivate::payloadSizeOf(int leaf) const
{
    return payloadSize(leaves.at(leaf).type, leaves.at(leaf).capacity);
}

bool PublishedBufferPrivate::read(int leaf, Content &content) const
{
    return readSlot(slot(leaf), payloadSizeOf(leaf), content.head, content.payload);
}

void PublishedBufferPrivate::write(int leaf, const Content &content)
{
    quint32 &seen = seenSequences[size_t(leaf)];
    if (slotSequence(slot(leaf), __ATOMIC_RELAXED) != seen) {
        clientWrote[size_t(leaf)] = true;
    }
    writeSlot(slot(leaf), payloadSizeOf(leaf), content.head, content.payload.constData());
    seen = slotSequence(slot(leaf), __ATOMIC_RELAXED);
}

void PublishedBufferPrivate::startDetection()
{
    seenSequences.clear();
    writableLeaves.clear();
    for (int leaf = 0; leaf < leaves.size(); ++leaf) {
        seenSequences.push_back(slotSequence(slot(leaf), __ATOMIC_ACQUIRE));
        if (!leaves.at(leaf).readOnly) {
            writableLeaves.append(leaf);
        }
    }
    clientWrote.assign(seenSequences.size(), false);
}

PublishedBuffer::PublishedBuffer(std::unique_ptr<PublishedBufferPrivate> state)
    : d(std::move(state))
{
}

PublishedBuffer::~PublishedBuffer()
{
    retire();
}

bool PublishedBuffer::publish(const QVector<QPair<int, ProcessValue>> &values, QString &error)
{
    if (d->retired) {
        error = QStringLiteral("buffer %1 is retired").arg(d->name);
        return false;
    }
    if (d->home.isForkedChild()) {
        error = QStringLiteral("buffer %1 belongs to the process that this one was forked from")
                    .arg(d->name);
        return false;
    }
    std::vector<PreparedWrite> writes;
    if (!prepare(*d, values, writes, error)) {
        return false;
    }
    const PublishersLock lock(*d);
    if (!lock.isHeld()) {
        error = lock.refusal(*d);
        return false;
    }
    const qint64 now = currentTimestamp();
    for (PreparedWrite &write : writes) {
        if (write.content.head.timestamp == 0) {
            write.content.head.timestamp = now;
        }
        if (write.keepsValue) {
            takeStoredValue(*d, write);
        }
        d->write(write.leaf, write.content);
    }
    return true;
}

ProcessValue PublishedBuffer::value(int leaf) const
{
    ProcessValue value(ProcessDataDefinitions::NoValue);
    PublishedBufferPrivate::Content content;
    if (leaf >= 0 && leaf < d->leaves.size() && d->read(leaf, content)) {
        setFromSlot(value, d->leaves.at(leaf).type, content.head, content.payload);
    }
    return value;
}

bool PublishedBuffer::carryOver(int leaf, const PublishedBuffer &from, int fromLeaf)
{
    if (leaf < 0 || leaf >= d->leaves.size() || fromLeaf < 0 || fromLeaf >= from.d->leaves.size()
        || d->leaves.at(leaf).type != from.d->leaves.at(fromLeaf).type) {
        return false;
    }
    PublishedBufferPrivate::Content content;
    if (!from.d->read(fromLeaf, content)
        || quint32(content.payload.size()) > d->payloadSizeOf(leaf)) {
        return false;
    }
    const PublishersLock lock(*d);
    if (!lock.isHeld()) {
        return false;
    }
    d->write(leaf, content);
    return true;
}

QVector<int> PublishedBuffer::takeClientWrites()
{
    QVector<int> written;
    for (const int leaf : std::as_const(d->writableLeaves)) {
        quint32 &seen = d->seenSequences[size_t(leaf)];
        const quint32 sequence = slotSequence(d->slot(leaf), __ATOMIC_ACQUIRE);
        if (sequence != seen || d->clientWrote[size_t(leaf)]) {
            written.append(leaf);
        }
        seen = sequence;
        d->clientWrote[size_t(leaf)] = false;
    }
    return written;
}

void PublishedBuffer::setLeafDescriptions(const QVector<LeafDescription> &leaves)
{
    if (leaves.size() != d->leaves.size()) {
        qCWarning(memoryLog).noquote() << "Buffer" << d->name << "has" << d->leaves.size()
                                       << "leaves; refused descriptions of" << leaves.size();
        return;
    }
    for (int leaf = 0; leaf < leaves.size(); ++leaf) {
        const quint64 offset = d->leaves.at(leaf).offset;
        d->leaves[leaf] = leaves.at(leaf);
        d->leaves[leaf].offset = offset;
    }
}

void PublishedBuffer::retire()
{
    if (d->retired || d->home.isForkedChild()) {
        return;
    }
    d->retired = true;
    d->life->retire();
    if (unlink(d->path.constData()) == -1 && errno != ENOENT) {
        qCWarning(memoryLog).noquote()
            << "Removing buffer" << d->name << "failed:" << errorText(errno);
    }
    CRASH_POINT();
    d->life->removeName();
}

void PublishedBuffer::countChange()
{
    if (!d->retired && !d->home.isForkedChild()) {
        d->life->countChange();
    }
}

quint32 PublishedBuffer::nextRevision() const
{
    return d->life->revision() + 1;
}
