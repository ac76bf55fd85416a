// SPDX-License-Identifier: MIT
// Lists the buffers in shared memory, and removes those whose publishers are proved dead.
#ifndef BUFFERFILES_H
#define BUFFERFILES_H

#include "ProcessDataPlatformExport.h"

#include <QString>
#include <QVector>

/// A file in shared memory that has the name of a buffer, or of the record of a publisher's life
/// where that has no buffer.
struct BufferFile
{
    enum State {
        Live, ///< its publisher runs
        Retired, ///< its publisher has given it up, and only its name was left
        Dead, ///< its publisher died: the kernel says so in the record beside it, or nobody holds its lock
        OtherLayout, ///< a buffer of another layout version: nothing can be told of its publisher
        NoBuffer, ///< something else under such a name
        Unreadable, ///< this process may not read it
    };

    QString path;
    State state = NoBuffer;
    QString problem; ///< why it is Unreadable or NoBuffer, for people
    quint32 layoutVersion = 0; ///< 0 where it cannot be told
    quint64 generation = 0; ///< 0 where it cannot be told
    quint64 size = 0; ///< bytes
    quint64 inode = 0;
    quint32 ownerUid = 0;
    quint32 groupId = 0;
    quint32 mode = 0; ///< permission bits

    /// Whether it is proved that nobody publishes in it any more.
    bool isLeftOver() const { return isLeftOver(state); }
    static bool isLeftOver(State state) { return state == Retired || state == Dead; }
};

/// How removing a buffer ended.
enum class BufferRemoval {
    Removed,
    Gone, ///< somebody else has removed it meanwhile
    Kept, ///< it is not, or no longer, a leftover: nothing was done
    Denied, ///< this process may not remove it
    Failed,
};

/// Layout version of buffers that this platform makes and reads.
PROCESSDATAPLATFORM_EXPORT quint32 ownBufferLayoutVersion();

/// Lists all files in shared memory that are named like buffers, sorted by name. Records of
/// publishers' lives are not listed where their buffer is there.
///
/// @param files         receives them; left alone on failure
/// @param errorMessage  receives one sentence; left alone on success
/// Threads: any. Maps nothing, logs nothing.
PROCESSDATAPLATFORM_EXPORT bool listBufferFiles(QVector<BufferFile> &files, QString &errorMessage);

/// Looks at one file again.
///
/// @returns false when it is not there any more
PROCESSDATAPLATFORM_EXPORT bool inspectBufferFile(const QString &path, BufferFile &file);

/// Removes a leftover and the record beside it. Proves again that it is one, on the file that was listed and no other.
///
/// @param errorMessage  receives one sentence unless it was removed or is gone
/// Threads: any. Logs nothing.
PROCESSDATAPLATFORM_EXPORT BufferRemoval removeLeftover(const BufferFile &file,
                                                        QString &errorMessage);

/// Whether this process may remove the file, as far as that can be told beforehand.
PROCESSDATAPLATFORM_EXPORT bool mayRemove(const BufferFile &file);

/// Whether a file is named like the buffers of a module. Modules with names of hundreds of bytes
/// may be taken for one another.
PROCESSDATAPLATFORM_EXPORT bool isNamedAfter(const BufferFile &file, const QString &moduleName);

#endif
