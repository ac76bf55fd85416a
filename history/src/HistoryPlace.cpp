// SPDX-License-Identifier: MIT
// Where a history is: a file or a server's database.
#include "HistoryPlace.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

QString HistoryPlace::parse(const QString &text, HistoryPlace *place)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString scheme = colon > 0 ? text.left(colon) : QString();
    if (scheme == QLatin1String("postgresql") || scheme == QLatin1String("postgres")) {
        place->kind = Kind::Postgres;
        place->server = QUrl(text, QUrl::StrictMode);
        if (!place->server.isValid() || place->server.path().size() < 2) {
            return QStringLiteral("\"%1\" does not name a database; expected "
                                  "postgresql://user@host/database")
                .arg(place->server.toDisplayString(QUrl::RemovePassword));
        }
        return {};
    }
    if (text.contains(QLatin1String("://"))) {
        return QStringLiteral("\"%1\" is not a place for a history; expected sqlite:FILE or "
                              "postgresql://user@host/database")
            .arg(QUrl(text).toDisplayString(QUrl::RemovePassword));
    }
    place->kind = Kind::Sqlite;
    place->file = scheme == QLatin1String("sqlite") ? text.mid(colon + 1) : text;
    if (place->file.isEmpty()) {
        return QStringLiteral("no database is named; expected sqlite:FILE or "
                              "postgresql://user@host/database");
    }
    return {};
}

QString HistoryPlace::shown() const
{
    return isFile() ? file : server.toDisplayString(QUrl::RemovePassword);
}

namespace {

QString systemError()
{
    return qt_error_string(errno);
}

QString me()
{
    const uid_t uid = ::geteuid();
    return QStringLiteral("user id %1").arg(uid);
}

QString refused(const QFileInfo &info, const QString &what)
{
    const QString reason = systemError();
    if (errno == EROFS) {
        return QStringLiteral("lies on a file system that is mounted read-only; choose another "
                              "place or mount it for writing");
    }
    return QStringLiteral(
               "cannot be %1: %2; it belongs to %3 (user id %4), and this process runs as "
               "%5: run it as that user, or change owner or permissions")
        .arg(what, reason, info.owner())
        .arg(info.ownerId())
        .arg(me());
}

QString folderProblem(const QFileInfo &file, bool writing)
{
    const QFileInfo folder(file.absolutePath());
    if (!folder.exists()) {
        return QStringLiteral("cannot be made: the folder %1 does not exist; make it first")
            .arg(folder.filePath());
    }
    if (!folder.isDir()) {
        return QStringLiteral("cannot be made: %1 is not a folder").arg(folder.filePath());
    }
    if (writing && ::access(QFile::encodeName(folder.filePath()).constData(), W_OK | X_OK) != 0) {
        const QString reason = refused(folder, QStringLiteral("written"));
        return QStringLiteral("needs other files beside it, but its folder ") + reason;
    }
    return {};
}

} // namespace

QString HistoryFile::problem(const QString &file, bool writing)
{
    const QByteArray path = QFile::encodeName(file);
    const QFileInfo info(file);
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) {
        if (errno != ENOENT) {
            return refused(info, QStringLiteral("looked at"));
        }
        return writing
            ? folderProblem(info, true)
            : QStringLiteral("does not exist; check the path, or record something first");
    }
    if (S_ISDIR(status.st_mode)) {
        return QStringLiteral("is a folder; name a file in it");
    }
    if (!S_ISREG(status.st_mode)) {
        return QStringLiteral("is not a regular file; name another");
    }
    if (::access(path.constData(), R_OK) != 0) {
        return refused(info, QStringLiteral("read"));
    }
    if (!writing) {
        return status.st_size == 0 ? QStringLiteral("is empty; record something first") : QString();
    }
    if (::access(path.constData(), W_OK) != 0) {
        return refused(info, QStringLiteral("written"));
    }
    return folderProblem(info, true);
}

HistoryFile::Identity HistoryFile::identity(const QString &file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file).constData(), &status) != 0) {
        return {};
    }
    return {quint64(status.st_dev), quint64(status.st_ino)};
}

qint64 HistoryFile::bytes(const QString &file)
{
    return QFileInfo(file).size() + QFileInfo(file + QStringLiteral("-wal")).size();
}
