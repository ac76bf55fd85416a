// SPDX-License-Identifier: MIT
// Opens a shared-memory object after judging whose it is and what.
#include "ObjectFile.h"

#include "BufferLayout.h"
#include "FileDescriptor.h"
#include "UserNames.h"

#include <fcntl.h>

namespace {

constexpr mode_t permissionBits = 07777;

QString typeProblem(mode_t mode)
{
    if (S_ISLNK(mode)) {
        return QStringLiteral("it is a symbolic link, not a regular file");
    }
    if (S_ISDIR(mode)) {
        return QStringLiteral("it is a directory, not a regular file");
    }
    return S_ISREG(mode) ? QString() : QStringLiteral("it is not a regular file");
}

bool judge(ObjectFile &file, quint32 ownerUid)
{
    file.step = BufferInspection::File;
    file.error = typeProblem(file.status.st_mode);
    if (file.error.isEmpty() && file.status.st_uid != ownerUid) {
        file.step = BufferInspection::Permission;
        file.error
            = differs("owner", UserNames::ofUser(file.status.st_uid), UserNames::ofUser(ownerUid));
    }
    if (file.error.isEmpty() && file.status.st_nlink > 1) {
        file.step = BufferInspection::Layout;
        file.error = differs("number of names (hard links)", file.status.st_nlink, 1);
    }
    return file.error.isEmpty();
}

void failed(ObjectFile &file, int reason)
{
    file.reason = reason;
    file.step = reason == EACCES || reason == EPERM ? BufferInspection::Permission
                                                    : BufferInspection::File;
    constexpr int octal = 8;
    file.error = reason == ENOENT
        ? QStringLiteral("it does not exist; its publisher has ended or made a new one")
        : errorText(reason);
    if (reason == EACCES) {
        file.error
            += QStringLiteral("; reading it takes membership in the group %1 (its mode is %2)")
                   .arg(UserNames::ofGroup(file.status.st_gid),
                        QString::number(file.status.st_mode & permissionBits, octal));
    }
}

int openFile(const QByteArray &path, int mode)
{
    // O_NONBLOCK: a named pipe that takes the name meanwhile must not hold us up.
    return repeatOnSignal(
        [&] { return open(path.constData(), mode | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK); });
}

void openAs(ObjectFile &file, const QByteArray &path, ObjectAccess access)
{
    if (access == ObjectAccess::ReadWriteIfAllowed) {
        file.descriptor = openFile(path, O_RDWR);
        file.writable = file.descriptor != -1;
        if (file.writable || (errno != EACCES && errno != EROFS)) {
            return;
        }
    }
    file.descriptor = openFile(path, O_RDONLY);
}

}

ObjectFile openObject(const QByteArray &path, quint32 ownerUid, ObjectAccess access)
{
    ObjectFile file;
    if (lstat(path.constData(), &file.status) == -1) {
        failed(file, errno);
        return file;
    }
    if (!judge(file, ownerUid)) {
        return file;
    }
    openAs(file, path, access);
    if (file.descriptor == -1) {
        failed(file, errno);
        return file;
    }
    if (fstat(file.descriptor, &file.status) == -1) {
        failed(file, errno);
    }
    // Again, for another file may have taken the name.
    if (!file.error.isEmpty() || !judge(file, ownerUid)) {
        close(file.descriptor);
        file.descriptor = -1;
    }
    return file;
}

QString differs(const char *what, const QString &found, const QString &expected)
{
    return QStringLiteral("its %1 is %2, expected %3").arg(QLatin1String(what), found, expected);
}

QString differs(const char *what, quint64 found, quint64 expected)
{
    return differs(what, QString::number(found), QString::number(expected));
}

QString otherLayout(quint32 version)
{
    return QStringLiteral("its layout has version %1, this process reads version %2: install "
                          "publisher and client of one release")
        .arg(version)
        .arg(bufferLayoutVersion);
}
