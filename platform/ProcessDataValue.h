// SPDX-License-Identifier: MIT
// A leaf of a process-data tree: reads and writes one value in shared memory.
#ifndef PROCESSDATAVALUE_H
#define PROCESSDATAVALUE_H

#include "ConfigurationAndProcessDataBase.h"
#include "ProcessDataPlatformExport.h"

class ProcessDataValuePrivate;
class ProcessValue;

/// One leaf. The only base is ConfigurationAndProcessDataBase, at offset 0, so that a shared
/// pointer to a leaf converts to one to the base without adjustment.
///
/// An implementation derives its own leaf, which holds the private state beside the base and
/// overrides the operations of the tree; getValue and setValue go to that state without a virtual
/// call.
///
/// Lifetime: a leaf that outlives its manager keeps what it needs to read its last value.
/// Threads: getValue may be called in several threads at a time, also while another thread or
///          process writes; callers must serialise calls to setValue.
class PROCESSDATAPLATFORM_EXPORT ProcessDataValue : public ConfigurationAndProcessDataBase
{
public:
    ~ProcessDataValue() override;

    /// Reads the current value.
    ///
    /// Called by the library for each position of a read, with a value made with error type 3 and
    /// the flag false. The implementation must overwrite value, error type and time, which must
    /// belong together, and must neither block nor allocate for a numeric value.
    ///
    /// @param value  overwritten; left untouched only when nothing could be read, so that it keeps
    ///               saying that no value was obtained. Units: the leaf's own.
    /// @param flag   without meaning in this platform; the library passes false
    /// @returns whether the value was overwritten; the library does not look at it
    bool getValue(ProcessValue &value, bool flag) const;

    /// Writes a value into the shared memory.
    ///
    /// Called by the library for each position of a write that is neither deactivated nor known as
    /// read-only. May wait for other writers, but only for a bounded time.
    ///
    /// @param value  in the leaf's unit; must convert to its type without loss and lie in its range
    /// @returns whether it was written, which the library hands on to its client; false leaves the
    ///          stored value as it was
    bool setValue(const ProcessValue &value);

protected:
    /// @param state  of the derived leaf, living at least as long as the leaf
    explicit ProcessDataValue(ProcessDataValuePrivate *state);

private:
    ProcessDataValuePrivate *const d;
};

#endif
