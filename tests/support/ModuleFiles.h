// SPDX-License-Identifier: MIT
// A module of the test's own, and what it has in shared memory, whose names all processes share.
#ifndef MODULEFILES_H
#define MODULEFILES_H

#include <QCoreApplication>
#include <QDir>
#include <QString>
#include <QStringList>

/// A module name that no other running test uses; without "_", which selectors do not allow there.
inline QString uniqueModule()
{
    static int counter = 0;
    return QString("It%1x%2").arg(QCoreApplication::applicationPid()).arg(++counter);
}

/// Names of the files in shared memory whose name contains the text: buffers, each standing for the
/// record of its publisher's life beside it as well, and whatever else there is.
inline QStringList buffersOf(const QString &text)
{
    const QStringList all
        = QDir("/dev/shm").entryList({"*" + text + "*"}, QDir::AllEntries | QDir::System);
    QStringList buffers = all;
    for (const QString &name : all) {
        buffers.removeAll(name + ".life");
    }
    return buffers;
}

/// Path of the only buffer of a module; else what there is, which is not a path.
inline QString bufferFile(const QString &module)
{
    const QStringList files = buffersOf(module + '_');
    return files.size() == 1 ? "/dev/shm/" + files.first() : "not one: " + files.join(' ');
}

/// Removes what killed publishers of the module left in shared memory.
inline void removeLeftBuffers(const QString &module)
{
    QDir sharedMemory("/dev/shm");
    const QStringList left
        = sharedMemory.entryList({"*" + module + "*"}, QDir::Files | QDir::System);
    for (const QString &name : left) {
        sharedMemory.remove(name);
    }
}

#endif
