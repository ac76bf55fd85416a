// SPDX-License-Identifier: MIT
// Steps as a person types them: FAULT [PLACE] [KEY=VALUE]…, separated by commas.
#ifndef STEPTEXT_H
#define STEPTEXT_H

#include "Scenario.h"

/// A step of a command line.
struct TypedStep
{
    QString text; ///< as it was typed
    QString
        scenarioStep; ///< the name of a step of the simulator's own scenario; empty: it is the one below
    ScenarioStep step; ///< bears the typed text as its name, unless it names itself
};

/// Reads steps, and adds them.
///
/// A step is a fault of a scenario, its source or module, and its other keys as KEY=VALUE; or "step"
/// and the name of a step. What holds a blank, a comma, a quote or, where no key is meant, an equals
/// sign stands in double quotes, in which \" and \\ stand for a quote and a backslash.
///
/// @param error  receives one sentence that names the step by number and text; left alone on success
bool parseSteps(const QString &text, QVector<TypedStep> &steps, QString &error);

/// How messages name a step.
///
/// @param index  0-based
QString stepLabel(int index, const QString &text);

#endif
