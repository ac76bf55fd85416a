// SPDX-License-Identifier: MIT
// Whether a publisher stands behind an opened buffer, told without mapping it.
#ifndef BUFFERLIFE_H
#define BUFFERLIFE_H

#include "BufferLayout.h"

/// What a file in shared memory is.
enum class BufferLife {
    NoBuffer, ///< no process-data buffer
    OtherLayout, ///< a buffer of another layout version: its locks cannot be found
    Live, ///< its publisher runs
    Retired, ///< its publisher has given it up
    Dead, ///< its publisher died: the kernel has marked the liveness lock, or nobody holds it
};

/// Reads the header through the descriptor; the file may be shorter than it should be.
///
/// @param header  receives it; all zero for NoBuffer
BufferLife lifeOfBuffer(int descriptor, BufferHeader &header);

/// Whether the file is proved to be of no use to anybody: Retired and Dead.
inline bool isAbandoned(BufferLife life)
{
    return life == BufferLife::Retired || life == BufferLife::Dead;
}

#endif
