// SPDX-License-Identifier: MIT
// Files that a command writes.
#include "OutputFile.h"

#include "InterruptExit.h"

#include <QFileInfo>
#include <QSaveFile>

namespace {

// A write that falls short has no reason yet; the next one has. Flushed here: a file that closes
// forgets it.
bool writeAll(QFileDevice &file, const QByteArray &content)
{
    for (int begin = 0; begin < content.size();) {
        const qint64 written = file.write(content.constData() + begin, content.size() - begin);
        if (written <= 0) {
            return false;
        }
        begin += static_cast<int>(written);
    }
    return file.flush();
}

bool writeInPlace(const QString &name, const QByteArray &content, QString &error)
{
    QFile file(name);
    const bool written = file.open(QIODevice::WriteOnly) && writeAll(file, content);
    error = written ? QString() : file.errorString();
    return written;
}

} // namespace

bool writeWholeFile(const QString &name, const QByteArray &content, QString &error)
{
    const QFileInfo there(name);
    if (there.exists() && !there.isFile() && !there.isDir()) {
        return writeInPlace(name, content, error);
    }
    const InterruptHold hold; // its temporary file would stay
    QSaveFile file(name);
    const bool written
        = file.open(QIODevice::WriteOnly) && writeAll(file, content) && file.commit();
    error = written ? QString() : file.errorString();
    return written;
}
