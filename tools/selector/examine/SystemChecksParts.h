// SPDX-License-Identifier: MIT
// The checks behind checkSystem() and how they note what they find.
#ifndef SYSTEMCHECKSPARTS_H
#define SYSTEMCHECKSPARTS_H

#include "DoctorFinding.h"
#include "SystemState.h"

/// Collects findings.
class Findings
{
public:
    const QVector<DoctorFinding> &list() const { return all; }

    void add(const DoctorFinding &finding) { all.append(finding); }
    void good(const QString &check, const QString &text);
    void warning(const QString &check, const QString &subject, const QString &code,
                 const QString &text, const QString &advice);
    void error(const QString &check, const QString &subject, const QString &code,
               const QString &text, const QString &advice);

    /// A question that was not answered well, with what that means for a script.
    void unanswered(const QString &check, const QString &subject, const Answer &answer);

private:
    QVector<DoctorFinding> all;
};

void checkSources(const SystemState &state, Findings &findings);
void checkBuffers(const SystemState &state, Findings &findings);

#endif
