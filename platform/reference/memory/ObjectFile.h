// SPDX-License-Identifier: MIT
// Opens a shared-memory object after judging whose it is and what.
#ifndef OBJECTFILE_H
#define OBJECTFILE_H

#include "BufferInspection.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

/// An object that is what it should be, or why it is not.
struct ObjectFile
{
    int descriptor = -1; ///< the caller's to close; -1 on failure
    bool writable = false;
    struct stat status = {};
    QString error; ///< one sentence; empty on success
    BufferInspection::Step step = BufferInspection::File; ///< of the failure
    int reason = 0; ///< errno where a system call failed
};

enum class ObjectAccess { ReadOnly, ReadWriteIfAllowed };

/// Opens an object, provided that it is a regular file of one name and of this owner. Anything else
/// is judged by its status alone: opening a stranger's file may have effects.
ObjectFile openObject(const QByteArray &path, quint32 ownerUid, ObjectAccess access);

/// For errors: what was found and what was expected.
QString differs(const char *what, const QString &found, const QString &expected);
QString differs(const char *what, quint64 found, quint64 expected);

/// For errors: that publisher and client are of different releases, with both layout versions.
QString otherLayout(quint32 version);

#endif
