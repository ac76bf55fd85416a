// SPDX-License-Identifier: MIT
// Findings as rows and JSON.
#include "DoctorEntries.h"

#include "Entries.h"

namespace {

QString severityName(DoctorFinding::Severity severity)
{
    switch (severity) {
    case DoctorFinding::Good:
        return QStringLiteral("ok");
    case DoctorFinding::Warning:
        return QStringLiteral("warning");
    case DoctorFinding::Error:
        break;
    }
    return QStringLiteral("error");
}

Entry::State stateOf(DoctorFinding::Severity severity)
{
    switch (severity) {
    case DoctorFinding::Good:
        return Entry::Good;
    case DoctorFinding::Warning:
        return Entry::Doubtful;
    case DoctorFinding::Error:
        break;
    }
    return Entry::Failed;
}

} // namespace

QVector<Column> doctorColumns()
{
    return columnsOf("severity check subject finding advice action");
}

Entry doctorEntry(const DoctorFinding &finding)
{
    Entry entry;
    entry.subject = finding.subject.isEmpty() ? finding.check : finding.subject;
    entry.state = stateOf(finding.severity);
    entry.failure = finding.finding.exitCode();
    const QString &text = finding.finding.text;
    const QString &advice = finding.finding.advice;
    entry.reason = advice.isEmpty() ? text : QStringLiteral("%1; %2").arg(text, advice);
    entry.json = {{QStringLiteral("check"), finding.check},
                  {QStringLiteral("severity"), severityName(finding.severity)},
                  {QStringLiteral("status"), stateName(entry.state)},
                  {QStringLiteral("finding"), text}};
    const auto insert = [&entry](const QString &key, const QString &text) {
        if (!text.isEmpty()) {
            entry.json.insert(key, text);
        }
    };
    insert(QStringLiteral("subject"), finding.subject);
    insert(QStringLiteral("code"), finding.finding.codeName());
    insert(QStringLiteral("advice"), advice);
    insert(QStringLiteral("action"), finding.action);
    entry.rows.append({severityName(finding.severity), finding.check, finding.subject, text, advice,
                       finding.action});
    return entry;
}
