// SPDX-License-Identifier: MIT
// Gives the precompiled header the target that others take it from.
