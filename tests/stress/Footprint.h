// SPDX-License-Identifier: MIT
// What this process holds: memory, descriptors, threads, mapped buffers.
#ifndef FOOTPRINT_H
#define FOOTPRINT_H

#include <QByteArray>
#include <QtGlobal>

struct Footprint
{
    /// First statement of main: starts the program anew when need be, so that memory is counted
    /// exactly. Else what was freed and is kept for later counts as in use.
    static void prepare(char **argv);

    /// As it is now, after freed memory went back to the system.
    static Footprint now();

    /// What grew since an earlier moment beyond what a process at rest may; empty when nothing did.
    ///
    /// Heap and resident memory may grow by an allowance that does not depend on the time between;
    /// all else may not grow at all.
    QByteArray growthSince(const Footprint &before) const;

    /// For a report, in one line.
    QByteArray text() const;

    qint64 heap
        = 0; // bytes in use; memory is 0 under AddressSanitizer, which looks for leaks itself
    qint64 resident = 0; // bytes
    int descriptors = 0;
    int threads = 0;
    int mappedBuffers = 0; // of process data
};

#endif
