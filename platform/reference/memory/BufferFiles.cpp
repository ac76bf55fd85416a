// SPDX-License-Identifier: MIT
// Lists the buffers in shared memory, and removes those whose publishers are proved dead.
#include "BufferFiles.h"

#include "BufferLife.h"
#include "BufferName.h"
#include "FileDescriptor.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <sys/stat.h>

namespace {

constexpr mode_t permissionBits = 07777;

void takeStatus(const struct stat &status, BufferFile &file)
{
    file.size = quint64(status.st_size);
    file.inode = quint64(status.st_ino);
    file.ownerUid = status.st_uid;
    file.groupId = status.st_gid;
    file.mode = status.st_mode & permissionBits;
}

// A buffer whose publisher's life nothing tells of, by what can be seen of it.
void takeContent(const QByteArray &path, BufferFile &file)
{
    ObjectFile object = openObject(path, file.ownerUid, ObjectAccess::ReadOnly);
    const FileDescriptor descriptor(object.descriptor);
    if (!object.error.isEmpty()) {
        file.state = object.reason == EACCES ? BufferFile::Unreadable : BufferFile::NoBuffer;
        file.problem = object.error;
        return;
    }
    BufferHeader header{};
    const ssize_t got
        = repeatOnSignal([&] { return pread(object.descriptor, &header, sizeof(header), 0); });
    if (got < ssize_t(sizeof(header))) {
        file.problem
            = QStringLiteral("its %1 bytes are fewer than a buffer's header has").arg(file.size);
    } else if (!std::equal(std::begin(bufferMagic), std::end(bufferMagic), header.magic)) {
        file.problem = QStringLiteral("it does not begin like a buffer");
    } else if (header.layoutVersion != bufferLayoutVersion) {
        file.state = BufferFile::OtherLayout;
        file.layoutVersion = header.layoutVersion;
    }
}

// What the record says is believed whatever stands in the buffer: whoever writes values can write
// all of that.
void takeLife(const QByteArray &path, const QByteArray &bufferPath, BufferFile &file)
{
    QString problem;
    const auto life = lifeOfBuffer(bufferPath, file.ownerUid, problem);
    if (!life) {
        if (path == bufferPath) {
            takeContent(path, file);
        }
        if (file.state == BufferFile::NoBuffer && file.problem.isEmpty()) {
            file.problem = problem;
        }
        return;
    }
    file.state = *life;
    if (file.state == BufferFile::Unreadable) {
        file.problem = problem;
        return;
    }
    file.layoutVersion = bufferLayoutVersion;
    file.generation = generationOfName(bufferPath).value_or(0);
}

QByteArray bufferOf(const QByteArray &path)
{
    return path.endsWith(lifeNameEnd) ? path.left(path.size() - int(sizeof(lifeNameEnd) - 1))
                                      : path;
}

// A record goes by its buffer, and stands in a list by itself only when there is none.
bool standsBesideBuffer(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status
    {
    };
    return bufferOf(name) != name && lstat(bufferOf(name).constData(), &status) == 0;
}

bool removeName(const QByteArray &path, int &reason)
{
    reason = unlink(path.constData()) == 0 ? 0 : errno;
    return reason == 0;
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
        file.problem = QStringLiteral("it is not a regular file");
        return true;
    }
    takeLife(name, bufferOf(name), file);
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
        const QString path = directory.filePath(name);
        if (!standsBesideBuffer(path) && inspectBufferFile(path, file)) {
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
    const QByteArray name = QFile::encodeName(file.path);
    int reason = 0;
    if (removeName(name, reason)) {
        int ignored = 0; // the proof goes last; without its buffer it is listed by itself
        removeName(bufferOf(name) + lifeNameEnd, ignored);
        return BufferRemoval::Removed;
    }
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
