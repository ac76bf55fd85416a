// SPDX-License-Identifier: MIT
// Maps the buffer that a description names, after checking all that the two say of each other.
#ifndef BUFFERATTACHMENT_H
#define BUFFERATTACHMENT_H

#include "ObjectFile.h"
#include "ProcessDataDescription.h"
#include "SharedMemoryMapping.h"

#include <QSharedPointer>

/// Opens, checks and maps a buffer and the record of its publisher's life; read-only where writing is not permitted.
///
/// @param description  with its buffer; its offsets are checked once more against the mapped size
/// @param error        receives one sentence that names what is wrong and, where a person can fix
/// it, how
/// @param step         receives which check failed; Liveness when none did
/// @returns the mapping; null when anything differs. A buffer whose publisher is gone or has
/// retired
///          it is mapped too, for its last values: see isBufferLive.
/// Threads: any.
QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error, BufferInspection::Step &step);

/// The same for callers that only pass the error on.
QSharedPointer<SharedMemoryPrivate> attachBuffer(const ProcessDataDescription &description,
                                                 QString &error);

#endif
