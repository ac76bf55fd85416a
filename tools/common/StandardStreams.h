// SPDX-License-Identifier: MIT
// Standard input, output and error of a program whose parent may have closed some of them.
#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

/// Keeps the descriptors of closed standard streams from being given to the next file, socket or
/// buffer that is opened, into which results would then be written. Reading or writing such a
/// stream fails as it does with a closed one. Call it first of all.
void reserveStandardStreams();

#endif
