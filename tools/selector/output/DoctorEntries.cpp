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
    return {{QStringLiteral("severity")}, {QStringLiteral("check")},  {QStringLiteral("subject")},
            {QStringLiteral("finding")},  {QStringLiteral("advice")}, {QStringLiteral("action")}};
}

Entry doctorEntry(const DoctorFinding &finding)
{
    Entry entry;
    entry.subject = finding.subject.isEmpty() ? finding.check : finding.subject;
    entry.state = stateOf(finding.severity);
    entry.failure = finding.failure;
    entry.reason = finding.advice.isEmpty()
        ? finding.text
        : QStringLiteral("%1; %2").arg(finding.text, finding.advice);
    entry.json = {{QStringLiteral("check"), finding.check},
                  {QStringLiteral("severity"), severityName(finding.severity)},
                  {QStringLiteral("status"), stateName(entry.state)},
                  {QStringLiteral("finding"), finding.text}};
    const auto insert = [&entry](const QString &key, const QString &text) {
        if (!text.isEmpty()) {
            entry.json.insert(key, text);
        }
    };
    insert(QStringLiteral("subject"), finding.subject);
    insert(QStringLiteral("code"), finding.code);
    insert(QStringLiteral("advice"), finding.advice);
    insert(QStringLiteral("action"), finding.action);
    entry.rows.append({severityName(finding.severity), finding.check, finding.subject, finding.text,
                       finding.advice, finding.action});
    return entry;
}
