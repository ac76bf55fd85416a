// SPDX-License-Identifier: MIT
// Lists the buffers in shared memory, and removes those whose publishers are proved dead.
#include "BufferFiles.h"

#include "BufferLife.h"
#include "BufferName.h"
#include "FileDescriptor.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr mode_t permissionBits = 07777;

BufferFile::State stateOf(BufferLife life)
{
    switch (life) {
    case BufferLife::Live:
        return BufferFile::Live;
    case BufferLife::Retired:
        return BufferFile::Retired;
    case BufferLife::Dead:
        return BufferFile::Dead;
    case BufferLife::OtherLayout:
        return BufferFile::OtherLayout;
    case BufferLife::NoBuffer:
        break;
    }
    return BufferFile::NoBuffer;
}

void takeStatus(const struct stat &status, BufferFile &file)
{
    file.size = quint64(status.st_size);
    file.inode = quint64(status.st_ino);
    file.ownerUid = status.st_uid;
    file.groupId = status.st_gid;
    file.mode = status.st_mode & permissionBits;
}

// O_NONBLOCK: a named pipe under such a name must not hold us up.
int openForReading(const QByteArray &path)
{
    return repeatOnSignal(
        [&] { return open(path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK); });
}

void takeContent(int descriptor, BufferFile &file)
{
    BufferHeader header{};
    file.state = stateOf(lifeOfBuffer(descriptor, header));
    if (file.state == BufferFile::NoBuffer) {
        file.problem = file.size < sizeof(header)
            ? QStringLiteral("its %1 bytes are fewer than a buffer's header has").arg(file.size)
            : QStringLiteral("it does not begin like a buffer");
        return;
    }
    file.layoutVersion = header.layoutVersion;
    file.generation = header.generation;
}
}

quint32 ownBufferLayoutVersion()
{
    return bufferLayoutVersion;
}

bool inspectBufferFile(const QString &path, BufferFile &file)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status
    {
    };
    if (lstat(name.constData(), &status) == -1) {
        return false;
    }
    file = BufferFile();
    file.path = path;
    takeStatus(status, file);
    if (!S_ISREG(status.st_mode)) {
        file.problem = QStringLiteral("it is no regular file");
        return true;
    }
    const FileDescriptor descriptor(openForReading(name));
    if (!descriptor.isValid()) {
        const int reason = errno;
        file.state = BufferFile::Unreadable;
        file.problem = errorText(reason);
        return reason != ENOENT;
    }
    if (fstat(descriptor.get(), &status) == 0) {
        takeStatus(status, file);
    }
    takeContent(descriptor.get(), file);
    return true;
}

bool listBufferFiles(QVector<BufferFile> &files, QString &errorMessage)
{
    const QDir directory(QString::fromLatin1(sharedMemoryDirectory));
    if (!directory.isReadable()) {
        errorMessage = QStringLiteral("%1 cannot be read").arg(directory.path());
        return false;
    }
    const QStringList names
        = directory.entryList({QString::fromLatin1(bufferNameBegin) + QLatin1Char('*')},
                              QDir::AllEntries | QDir::System | QDir::Hidden, QDir::Name);
    QVector<BufferFile> found;
    for (const QString &name : names) {
        BufferFile file;
        if (inspectBufferFile(directory.filePath(name), file)) {
            found.append(file);
        }
    }
    files = found;
    return true;
}

BufferRemoval removeLeftover(const BufferFile &file, QString &errorMessage)
{
    BufferFile now;
    if (!inspectBufferFile(file.path, now)) {
        return BufferRemoval::Gone;
    }
    if (now.inode != file.inode) {
        errorMessage = QStringLiteral("another file has taken its name");
        return BufferRemoval::Kept;
    }
    if (!now.isLeftOver()) {
        errorMessage = QStringLiteral("it is not proved that nobody uses it");
        return BufferRemoval::Kept;
    }
    // Names are never used twice: they end in a generation, which only grows.
    if (unlink(QFile::encodeName(file.path).constData()) == 0) {
        return BufferRemoval::Removed;
    }
    const int reason = errno;
    if (reason == ENOENT) {
        return BufferRemoval::Gone;
    }
    errorMessage = errorText(reason);
    return reason == EACCES || reason == EPERM ? BufferRemoval::Denied : BufferRemoval::Failed;
}

// The directory is sticky: a file's name can be taken away by its owner and by root.
bool mayRemove(const BufferFile &file)
{
    return geteuid() == 0 || geteuid() == file.ownerUid;
}

bool isNamedAfter(const BufferFile &file, const QString &moduleName)
{
    return QFile::encodeName(file.path).startsWith(QByteArray(sharedMemoryDirectory) + '/'
                                                   + bufferNameBeginOfModule(moduleName));
}
