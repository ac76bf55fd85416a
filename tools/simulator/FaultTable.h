// SPDX-License-Identifier: MIT
// Which faults there are, and which keys each takes.
#ifndef FAULTTABLE_H
#define FAULTTABLE_H

#include "Scenario.h"

#include <QHash>

struct FaultKeys
{
    Fault fault;
    QStringList required;
    QStringList optional;
};

/// By what a step says in "do".
const QHash<QString, FaultKeys> &faults();

/// The key that says where the fault happens, "source" or "module"; empty for other texts, and for a
/// fault that takes neither.
QString placeKeyOf(const QString &fault);

/// Whether the key holds a number; all others hold texts.
bool takesNumber(const QString &key);

/// Whether no simulator is there after the step.
bool endsSimulator(const ScenarioStep &step);

#endif
