// SPDX-License-Identifier: MIT
// Names of the reasons, and what they mean for scripts.
#include "Finding.h"

#include <QMetaEnum>

using ProcessDataAccess::Result;

QString Finding::codeName() const
{
    if (isNone()) {
        return {};
    }
    const auto key = QLatin1String(QMetaEnum::fromType<Code>().valueToKey(code));
    return QChar(key.at(0)).toLower() + key.mid(1);
}

ExitCode Finding::exitCode() const
{
    switch (code) {
    case None:
    case Deactivated:
        return ExitAllGood;
    case TimeLimit:
        return ExitTimeLimit;
    case Denied:
        return ExitDenied;
    case BusOutOfReach:
        return ExitNotReachable;
    default:
        return ExitSomeFailed;
    }
}

Finding unanswered(const Answer &answer, const QString &service)
{
    const QString who = service.isEmpty() ? QStringLiteral("it") : QStringLiteral("the service");
    switch (answer.result) {
    case Result::TimedOut:
        return {Finding::TimeLimit, answer.error,
                who
                    + QStringLiteral(" hangs or is stopped: look at its log and state, restart it, "
                                     "or allow more with --timeout")};
    case Result::Denied:
        return {Finding::Denied, answer.error,
                QStringLiteral("the bus policy does not permit it: run as a user that it permits, "
                               "or extend the policy")};
    case Result::ServiceMissing:
        return {Finding::ServiceMissing, answer.error,
                who + QStringLiteral(" ended meanwhile: try again")};
    case Result::BusNotReachable:
        return {Finding::ServiceFailed, answer.error,
                QStringLiteral("the bus went away: try again")};
    case Result::NotSupported:
        return {Finding::NotSupported, answer.error,
                QStringLiteral("name selectors in full, or take them from a list")};
    case Result::ServiceFailed:
    case Result::Ok:
        break;
    }
    return {Finding::ServiceFailed, answer.error,
            service.isEmpty() ? QStringLiteral("look at the service's log")
                              : QStringLiteral("look at the log of ") + service};
}
