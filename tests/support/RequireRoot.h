// SPDX-License-Identifier: MIT
// For tests that only root can run.
#ifndef REQUIREROOT_H
#define REQUIREROOT_H

#include <QtTest>

#include <unistd.h>

/// Whoever runs such a test without root sees it skipped, not passed.
///
/// @param deed  what root is needed for, a literal: "act as other users"
#define REQUIRE_ROOT_TO(deed)                                                                      \
    if (geteuid() != 0) {                                                                          \
        QSKIP("takes root, to " deed);                                                             \
    }                                                                                              \
    static_assert(true, "takes a semicolon")

#define REQUIRE_ROOT() REQUIRE_ROOT_TO("act as other users")

#endif
