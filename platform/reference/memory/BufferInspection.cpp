// SPDX-License-Identifier: MIT
// Tells people how far a client gets on its way into the buffer that a description names.
#include "BufferInspection.h"

#include "BufferAttachment.h"
#include "BufferName.h"
#include "UserNames.h"

#include <sys/stat.h>

namespace {

constexpr mode_t permissionBits = 07777;

QString permissionText(const QByteArray &path)
{
    struct stat status
    {
    };
    if (lstat(path.constData(), &status) == -1) {
        return QString();
    }
    constexpr int octal = 8;
    return QStringLiteral("owner %1, group %2, mode %3")
        .arg(UserNames::ofUser(status.st_uid), UserNames::ofGroup(status.st_gid))
        .arg(status.st_mode & permissionBits, 4, octal, QLatin1Char('0'));
}

QString livenessProblem(const LifeRecord &life)
{
    if (bufferState(life) != BufferActive) {
        return QStringLiteral("its publisher has retired it");
    }
    return isLockOwnerAlive(lockWord(life.lock))
        ? QString()
        : QStringLiteral("its publisher died without retiring it");
}

}

BufferInspection inspectBuffer(const QString &description)
{
    BufferInspection result;
    const auto content
        = parseDescription(description.toUtf8(), DescriptionForm::Published, result.problem);
    if (!content) {
        return result;
    }
    const QByteArray path = sharedMemoryPath(content->buffer->name);
    result.path = path.isEmpty() ? content->buffer->name : QString::fromUtf8(path);
    result.generation = content->buffer->generation;
    result.size = content->buffer->size;
    result.leafCount = content->leaves.size();
    result.permission = permissionText(path);
    const auto memory = attachBuffer(*content, result.problem, result.end);
    if (memory.isNull()) {
        return result;
    }
    result.writable = memory->isWritable();
    result.problem = livenessProblem(memory->life());
    if (result.problem.isEmpty()) {
        result.end = BufferInspection::Complete;
    }
    return result;
}
