// SPDX-License-Identifier: MIT
// Keeps a process alive when a buffer that it has mapped is cut short.
#ifndef MAPPINGGUARD_H
#define MAPPINGGUARD_H

#include <QtGlobal>

#include <cstddef>

struct GuardedRange;

/// Replaces a mapping by zero pages at the first access to a page that the file no longer has.
///
/// Without it such an access ends the process with SIGBUS. The first guard installs a handler for
/// that signal, for good; what is no guard's goes to the handler that was there before. A read costs
/// nothing.
class MappingGuard
{
public:
    /// @param base  start of a mapping that outlives the guard
    MappingGuard(void *base, size_t size, bool writable);
    ~MappingGuard();
    MappingGuard(const MappingGuard &) = delete;
    MappingGuard &operator=(const MappingGuard &) = delete;

    /// Whether the mapping was replaced. It must then stay: a lock in it may have been held, and the
    /// thread that held it still has it in its list.
    bool isLost() const;

private:
    GuardedRange *const range;
};

#endif
