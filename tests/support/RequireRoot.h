// SPDX-License-Identifier: MIT
// For tests that act as other users.
#ifndef REQUIREROOT_H
#define REQUIREROOT_H

#include <QtTest>

#include <unistd.h>

/// Whoever runs such a test without root sees it skipped, not passed.
#define REQUIRE_ROOT()                                                                             \
    if (geteuid() != 0) {                                                                          \
        QSKIP("takes root, to act as other users");                                                \
    }                                                                                              \
    static_assert(true, "takes a semicolon")

#endif
