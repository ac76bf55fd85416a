// SPDX-License-Identifier: MIT
// Maps the buffer that a description names, after checking all that the two say of each other.
#ifndef BUFFERATTACHMENT_H
#define BUFFERATTACHMENT_H

#include "ProcessDataDescription.h"
#include "SharedMemoryMapping.h"

#include <QSharedPointer>

/// Where attaching ended.
enum class AttachStep {
    File, ///< there is no such buffer
    Permission, ///< it may not be read, or is not owned by whom the description names
    Layout, ///< it is not what the description says
    Mapped,
};

/// Opens, checks and maps a buffer; read-only where writing is not permitted.
///
/// @param description  with its buffer; its offsets are checked once more against the mapped size
/// @param error        receives one sentence that names what is wrong and, where a person can mend
/// it, how
/// @param step         receives which check failed; Mapped when none did
/// @returns the mapping; null when anything differs. A buffer whose publisher is gone or has
/// retired
///          it is mapped too, for its last values: see isBufferLive.
/// Threads: any.
QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error, AttachStep &step);

/// The same for callers that only pass the error on.
QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error);

#endif
