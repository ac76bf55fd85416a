// SPDX-License-Identifier: MIT
// The publisher's side of the record that tells whether it lives.
#include "PublishedLife.h"

#include "BufferName.h"
#include "FileDescriptor.h"
#include "LivenessKeeper.h"
#include "MemoryLog.h"
#include "NamelessFile.h"
#include "SharedLock.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr mode_t lifeMode = 0640; // whatever the buffer's: nobody else writes it

int fillRecord(LifeRecord &record, const QByteArray &bufferName, quint64 generation)
{
    CRASH_POINT();
    std::copy(std::begin(lifeMagic), std::end(lifeMagic), record.magic);
    record.layoutVersion = bufferLayoutVersion;
    record.recordSize = sizeof(LifeRecord);
    record.generation = generation;
    CRASH_POINT();
    record.abiTag = bufferAbiTag;
    std::memcpy(record.bufferName, bufferName.constData(),
                std::min(size_t(bufferName.size()), lifeNameRoom - 1));
    setBufferState(record, BufferBuilding);
    return initializeSharedLock(record.lock);
}

}

PublishedLife::PublishedLife(LifeRecord *record, QByteArray path)
    : record(record)
    , path(std::move(path))
{
}

std::unique_ptr<PublishedLife>
PublishedLife::create(const QByteArray &bufferPath, quint64 generation, int &reason, QString &error)
{
    reason = EIO;
    const FileDescriptor file(makeNamelessFile(lifeMode, sizeof(LifeRecord), error));
    void *base = file.isValid() ? mapNamelessFile(file.get(), sizeof(LifeRecord), error) : nullptr;
    if (base == nullptr) {
        return nullptr;
    }
    std::unique_ptr<PublishedLife> life(
        new PublishedLife(static_cast<LifeRecord *>(base), bufferPath + lifeNameEnd));
    reason = fillRecord(*life->record, bufferPath.mid(bufferPath.lastIndexOf('/') + 1), generation);
    if (reason == 0) {
        reason = LivenessKeeper::instance().hold(&life->record->lock.mutex);
        life->held = reason == 0;
    }
    if (reason != 0) {
        error = QStringLiteral("taking the liveness lock failed: %1").arg(errorText(reason));
        return nullptr;
    }
    reason = giveName(file.get(), life->path);
    life->named = reason == 0;
    if (reason != 0) {
        error = QStringLiteral("giving the record of this publisher's life its name %1 failed: %2")
                    .arg(QString::fromUtf8(life->path), errorText(reason));
        return nullptr;
    }
    return life;
}

PublishedLife::~PublishedLife()
{
    retire();
    removeName();
    munmap(record, sizeof(LifeRecord));
}

void PublishedLife::countChange()
{
    CRASH_POINT();
    __atomic_store_n(&record->revision, record->revision + 1, __ATOMIC_RELEASE);
}

void PublishedLife::retire()
{
    if (!held || home.isForkedChild()) {
        return;
    }
    held = false;
    setBufferState(*record, BufferRetired);
    const int reason = LivenessKeeper::instance().release(&record->lock.mutex);
    if (reason != 0) {
        qCWarning(memoryLog).noquote()
            << "Giving up the liveness lock in" << path << "failed:" << errorText(reason);
    }
    CRASH_POINT();
}

void PublishedLife::removeName()
{
    if (!named || home.isForkedChild()) {
        return;
    }
    named = false;
    if (unlink(path.constData()) == -1 && errno != ENOENT) {
        qCWarning(memoryLog).noquote() << "Removing" << path << "failed:" << errorText(errno);
    }
    CRASH_POINT();
}
