// SPDX-License-Identifier: MIT
// Tells people how far a client gets on its way into the buffer that a description names.
#ifndef BUFFERINSPECTION_H
#define BUFFERINSPECTION_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// What was found on the way, for people; each text is empty until its step is reached.
struct BufferInspection
{
    /// Steps of the way, in order.
    enum Step {
        Description, ///< the description breaks a rule
        File, ///< the buffer does not exist
        Permission, ///< it may not be read, or belongs to someone else
        Layout, ///< it is not what the description says
        Liveness, ///< its publisher has ended: the values in it are the last
        Complete, ///< nothing is wrong
    };

    Step end = Description; ///< the step that failed
    QString problem; ///< why; empty when nothing is wrong
    QString path; ///< of the buffer's file
    QString permission; ///< owner, group, mode, and whether this process may write
    quint64 generation = 0; ///< of the buffer; told from File on
    quint64 size = 0; ///< bytes
    int leafCount = 0; ///< of the description; told from File on
    bool writable = false; ///< told from Layout on
};

/// Does all that a client does when it attaches, and lets go of the buffer again.
///
/// @param description  text as a service sends it
/// @returns how far it got, and what stood in the way
/// Threads: any. Logs nothing.
PROCESSDATAPLATFORM_EXPORT BufferInspection inspectBuffer(const QString &description);

#endif
