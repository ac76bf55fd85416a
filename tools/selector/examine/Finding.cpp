// SPDX-License-Identifier: MIT
// Names of the reasons, and what they mean for scripts.
#include "Finding.h"

#include <QMetaEnum>

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
    case BusQueryResult::TimedOut:
        return {Finding::TimeLimit, answer.error,
                who
                    + QStringLiteral(" hangs or is stopped: look at its log and state, restart it, "
                                     "or allow more with --timeout")};
    case BusQueryResult::Denied:
        return {Finding::Denied, answer.error,
                QStringLiteral("the bus policy does not permit it: run as a user that it permits, "
                               "or extend the policy")};
    case BusQueryResult::ServiceMissing:
        return {Finding::ServiceMissing, answer.error,
                who + QStringLiteral(" ended meanwhile: try again")};
    case BusQueryResult::BusNotReachable:
        return {Finding::ServiceFailed, answer.error,
                QStringLiteral("the bus went away: try again")};
    case BusQueryResult::ServiceFailed:
    case BusQueryResult::Ok:
        break;
    }
    return {Finding::ServiceFailed, answer.error,
            service.isEmpty() ? QStringLiteral("look at the service's log")
                              : QStringLiteral("look at the log of ") + service};
}

QString explainErrorType(ProcessDataDefinitions::ErrorTypes errorType)
{
    switch (errorType) {
    case ProcessDataDefinitions::NoError:
        return {};
    case ProcessDataDefinitions::NotInitialized:
        return QStringLiteral("never published so far");
    case ProcessDataDefinitions::SourceLost:
        return QStringLiteral("the publisher is gone, this is its last value");
    case ProcessDataDefinitions::NoValue:
        return QStringLiteral("no value was obtained");
    case ProcessDataDefinitions::DeviceFault:
        return QStringLiteral("the publisher reports a fault of the device");
    case ProcessDataDefinitions::OutOfRange:
        return QStringLiteral("the publisher reports a value outside the device's range");
    }
    return QStringLiteral("an error type that this tool does not know");
}
