// SPDX-License-Identifier: MIT
// What selector doctor finds.
#ifndef DOCTORFINDING_H
#define DOCTORFINDING_H

#include "Finding.h"

#include <QVector>

/// One thing that was looked at, good or not.
struct DoctorFinding
{
    enum Severity {
        Good,
        Warning, ///< clients work, but something is left over, doubtful or about to hurt
        Error, ///< clients do not get at values that they should
    };

    static DoctorFinding good(const QString &check, const QString &text)
    {
        return {check, {}, Good, {Finding::None, text}, {}};
    }
    static DoctorFinding warning(const QString &check, const QString &subject,
                                 const Finding &finding)
    {
        return {check, subject, Warning, finding, {}};
    }
    static DoctorFinding error(const QString &check, const QString &subject, const Finding &finding)
    {
        return {check, subject, Error, finding, {}};
    }

    QString check; ///< versions, bus, services, registry, sources, buffers, permissions, report
    QString subject; ///< module, source or file; empty: the system
    Severity severity = Good;
    Finding finding; ///< its code is None when it is good
    QString action; ///< of a leftover: wouldRemove, removed, kept
};

#endif
