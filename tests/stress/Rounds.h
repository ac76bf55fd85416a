// SPDX-License-Identifier: MIT
// How often a stress test repeats what it does.
#ifndef ROUNDS_H
#define ROUNDS_H

#include <QtGlobal>

/// STRESS_ROUNDS when it is set to a number above 0, else the short form's count.
inline int roundsOr(int shortForm)
{
    const int wanted = qEnvironmentVariableIntValue("STRESS_ROUNDS");
    return wanted > 0 ? wanted : shortForm;
}

#endif
