// SPDX-License-Identifier: MIT
// What selector doctor finds.
#ifndef DOCTORFINDING_H
#define DOCTORFINDING_H

#include "ExitCode.h"

#include <QString>
#include <QVector>

/// One thing that was looked at, good or not.
struct DoctorFinding
{
    enum Severity {
        Good,
        Warning, ///< clients work, but something is left over, doubtful or about to hurt
        Error, ///< clients do not get at values that they should
    };

    QString check; ///< versions, bus, services, registry, sources, buffers, permissions, report
    QString subject; ///< module, source or file; empty: the system
    Severity severity = Good;
    QString code; ///< for programs; empty when it is good
    QString text;
    QString advice;
    QString action; ///< of a leftover: wouldRemove, removed, kept
    ExitCode failure = ExitSomeFailed; ///< what it means for a script when it is not good
};

#endif
