// SPDX-License-Identifier: MIT
// The whole way of one selector, from its text to its value.
#ifndef EXPLANATION_H
#define EXPLANATION_H

#include "Examination.h"

/// What was found at the steps of a selector's way.
struct Explanation
{
    QStringList passed; ///< of each step that is all right, from Text on
    Finding finding; ///< of the step behind them; None when there is none

    Step end() const { return Step(passed.size()); }
};

/// Walks until a step fails.
///
/// @param properties  that the leaf must have
/// Threads: one; blocks for D-Bus calls. Runs no event loop.
Explanation explainSelector(const QString &url, const QStringList &properties);

#endif
