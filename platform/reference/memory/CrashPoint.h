// SPDX-License-Identifier: MIT
// Marks the places between two stores to shared memory, so that a test can end the process there.
#ifndef CRASHPOINT_H
#define CRASHPOINT_H

#ifdef PROCESSDATA_CRASH_POINTS
void crashPointReached(); // the test's
#define CRASH_POINT() crashPointReached()
#else
#define CRASH_POINT() static_cast<void>(0)
#endif

#endif
