// SPDX-License-Identifier: MIT
// The reference platform's buffers in shared memory.
#ifndef REFERENCEBUFFERS_H
#define REFERENCEBUFFERS_H

#include "BufferFiles.h"
#include "PlatformDetails.h"

class ReferenceBuffers : public PlatformDetails::BufferList
{
public:
    void lookAgain() override;
    QVector<DoctorFinding> check(const SystemState &state) const override;
    QJsonArray report() const override;

    QVector<BufferFile> files;
    QString error; ///< why shared memory cannot be looked at
};

/// The files of shared memory that are named after the modules; all without modules.
bool listFiles(const QStringList &only, QVector<BufferFile> &files, QString &error);

/// What a file that nobody publishes in any more is, for people.
QString leftoverText(const BufferFile &file);

/// "owner anna, group processdata, mode 0640".
QString permissionOf(const BufferFile &file);

/// What gives this process a permission that a file's mode gives to its group; what else helps
/// where it gives the group none.
///
/// @param wanted  the bits of the group's permission that are needed, such as 040
QString remedyFor(const BufferFile &file, quint32 wanted);

#endif
