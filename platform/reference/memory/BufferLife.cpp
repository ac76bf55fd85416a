// SPDX-License-Identifier: MIT
// Whether a publisher stands behind an opened buffer, told without mapping it.
#include "BufferLife.h"

#include "FileDescriptor.h"

#include <algorithm>

BufferLife lifeOfBuffer(int descriptor, BufferHeader &header)
{
    header = BufferHeader{};
    const ssize_t got
        = repeatOnSignal([&] { return pread(descriptor, &header, sizeof(header), 0); });
    if (got != ssize_t(sizeof(header))
        || !std::equal(std::begin(bufferMagic), std::end(bufferMagic), header.magic)) {
        header = BufferHeader{};
        return BufferLife::NoBuffer;
    }
    if (header.layoutVersion != bufferLayoutVersion) {
        return BufferLife::OtherLayout;
    }
    if (header.state == BufferRetired) {
        return BufferLife::Retired;
    }
    // A buffer gets its name only after its publisher holds the liveness lock, so a lock without an
    // owner means death in every state.
    return isLockOwnerAlive(lockWord(header.livenessLock)) ? BufferLife::Live : BufferLife::Dead;
}
