// SPDX-License-Identifier: MIT
// How the checks note what they find.
#include "SystemChecksParts.h"

void Findings::good(const QString &check, const QString &text)
{
    all.append({check, {}, DoctorFinding::Good, {}, text, {}, {}, ExitAllGood});
}

void Findings::warning(const QString &check, const QString &subject, const QString &code,
                       const QString &text, const QString &advice)
{
    all.append({check, subject, DoctorFinding::Warning, code, text, advice, {}, ExitSomeFailed});
}

void Findings::error(const QString &check, const QString &subject, const QString &code,
                     const QString &text, const QString &advice)
{
    all.append({check, subject, DoctorFinding::Error, code, text, advice, {}, ExitSomeFailed});
}

void Findings::unanswered(const QString &check, const QString &subject, const Answer &answer)
{
    DoctorFinding finding{check,
                          subject,
                          DoctorFinding::Error,
                          QStringLiteral("serviceFailed"),
                          answer.error,
                          QStringLiteral("look at the service's log"),
                          {},
                          ExitSomeFailed};
    if (answer.result == BusQueryResult::TimedOut) {
        finding.code = QStringLiteral("timeLimit");
        finding.advice = QStringLiteral("it hangs or is stopped: look at its log and state, "
                                        "restart it, or allow more with --timeout");
        finding.failure = ExitTimeLimit;
    } else if (answer.result == BusQueryResult::Denied) {
        finding.code = QStringLiteral("denied");
        finding.advice = QStringLiteral("the bus policy does not permit it: run as a user that it "
                                        "permits, or extend the policy");
        finding.failure = ExitDenied;
    } else if (answer.result == BusQueryResult::ServiceMissing) {
        finding.code = QStringLiteral("serviceMissing");
        finding.advice = QStringLiteral("it ended meanwhile: try again");
    }
    all.append(finding);
}
