// SPDX-License-Identifier: MIT
// A file's content, read, written and changed in one call each.
#ifndef FILES_H
#define FILES_H

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

/// Empty also when it cannot be read.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// What the system's status of a process says of a field, such as "VmRSS"; empty for none.
inline QByteArray statusOf(qint64 pid, const QByteArray &field)
{
    const QList<QByteArray> lines = contentOf(QString("/proc/%1/status").arg(pid)).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(field + ':')) {
            return line.mid(field.size() + 1).trimmed();
        }
    }
    return QByteArray();
}

/// Changes some bytes of a file, which keeps its size when they lie in it.
inline bool overwrite(const QString &path, qint64 position, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && file.seek(position)
        && file.write(bytes) == bytes.size();
}

#endif
