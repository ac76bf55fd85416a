// SPDX-License-Identifier: MIT
// Faults of a published buffer: its file's permissions, a writer that dies in the middle.
#include "BufferFaults.h"

#include "BufferAttachment.h"
#include "BufferInspection.h"
#include "FileDescriptor.h"
#include "SharedLock.h"
#include "Slot.h"

#include <QFile>

#include <algorithm>
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The slot of one leaf, and what half a write puts into it. Made before the fork: a child of a
// process with threads may not allocate.
struct HalfWrite
{
    QSharedPointer<SharedMemoryPrivate> memory;
    quint64 offset = 0;
    quint32 payloadSize = 0;
    QByteArray garbage;
};

bool prepare(const QByteArray &text, const QString &path, HalfWrite &write, QString &error)
{
    const auto description = parseDescription(text, DescriptionForm::Published, error);
    if (!description.has_value()) {
        return false;
    }
    const auto leaf
        = std::find_if(description->leaves.begin(), description->leaves.end(),
                       [&](const LeafDescription &candidate) { return candidate.path == path; });
    if (leaf == description->leaves.end()) {
        error = QStringLiteral("there is no leaf \"%1\"").arg(path);
        return false;
    }
    write.memory = attachBuffer(*description, error);
    if (write.memory.isNull()) {
        return false;
    }
    if (!write.memory->isWritable()) {
        error = QStringLiteral("the buffer may not be written by this process");
        return false;
    }
    write.offset = leaf->offset;
    write.payloadSize = payloadSize(leaf->type, leaf->capacity);
    write.garbage.fill('\xa5', static_cast<int>(slotCopySize(write.payloadSize) / 2));
    return true;
}

// Comes back only when the lock could not be had.
void dieHalfWay(const HalfWrite &write)
{
    const WritersLockGuard lock(write.memory->header().writersLock);
    if (lock.error() == 0) {
        char *slot = write.memory->at(write.offset);
        const quint32 sequence = slotSequence(slot, __ATOMIC_RELAXED);
        storeSlotWords(slot + slotCopyOffset(sequence + 1, write.payloadSize),
                       write.garbage.constData(), size_t(write.garbage.size()) / sizeof(SlotWord));
        static_cast<void>(kill(getpid(), SIGKILL));
    }
}

bool dieInChild(const HalfWrite &write, QString &error)
{
    const pid_t child = fork();
    if (child < 0) {
        error = QStringLiteral("no process for the writer: %1").arg(errorText(errno));
        return false;
    }
    if (child == 0) {
        dieHalfWay(write);
        _exit(1);
    }
    int status = 0;
    if (repeatOnSignal([&] { return waitpid(child, &status, 0); }) != child || !WIFSIGNALED(status)
        || WTERMSIG(status) != SIGKILL) {
        error = QStringLiteral("the writer could not take the writers' lock");
        return false;
    }
    return true;
}

} // namespace

bool changeBufferMode(const QByteArray &description, uint mode, QString &error)
{
    const BufferInspection inspection = inspectBuffer(QString::fromUtf8(description));
    if (inspection.path.isEmpty()) {
        error = inspection.problem;
        return false;
    }
    if (chmod(QFile::encodeName(inspection.path).constData(), mode) != 0) {
        error = QStringLiteral("%1: %2").arg(inspection.path, errorText(errno));
        return false;
    }
    return true;
}

bool dieInWrite(const QByteArray &description, const QString &leaf, bool byClient, QString &error)
{
    HalfWrite write;
    if (!prepare(description, leaf, write, error)) {
        return false;
    }
    if (byClient) {
        return dieInChild(write, error);
    }
    dieHalfWay(write);
    error = QStringLiteral("the writers' lock could not be taken");
    return false;
}
