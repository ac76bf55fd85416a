// SPDX-License-Identifier: MIT
// Names of the reasons, and what they mean for scripts.
#include "Finding.h"

QString Finding::codeName() const
{
    switch (code) {
    case None:
        break;
    case Deactivated:
        return QStringLiteral("deactivated");
    case InvalidUrl:
        return QStringLiteral("invalidUrl");
    case WrongScheme:
        return QStringLiteral("wrongScheme");
    case ServiceMissing:
        return QStringLiteral("serviceMissing");
    case ServiceFailed:
        return QStringLiteral("serviceFailed");
    case NoSuchInstance:
        return QStringLiteral("noSuchInstance");
    case NoSuchLeaf:
        return QStringLiteral("noSuchLeaf");
    case NotReadable:
        return QStringLiteral("notReadable");
    case ReadOnly:
        return QStringLiteral("readOnly");
    case ValueRefused:
        return QStringLiteral("valueRefused");
    case NoSuchProperty:
        return QStringLiteral("noSuchProperty");
    case Duplicate:
        return QStringLiteral("duplicate");
    case NotWritten:
        return QStringLiteral("notWritten");
    case NotVerified:
        return QStringLiteral("notVerified");
    case LeftOut:
        return QStringLiteral("leftOut");
    case TimeLimit:
        return QStringLiteral("timeLimit");
    case Denied:
        return QStringLiteral("denied");
    case BusOutOfReach:
        return QStringLiteral("busOutOfReach");
    case NotReady:
        return QStringLiteral("notReady");
    case NotRegistered:
        return QStringLiteral("notRegistered");
    case BadEntry:
        return QStringLiteral("badEntry");
    case BadDescription:
        return QStringLiteral("badDescription");
    case BufferMissing:
        return QStringLiteral("bufferMissing");
    case PublisherDead:
        return QStringLiteral("publisherDead");
    case NotDescribed:
        return QStringLiteral("notDescribed");
    case Leftover:
        return QStringLiteral("leftover");
    case OtherLayout:
        return QStringLiteral("otherLayout");
    case NotABuffer:
        return QStringLiteral("notABuffer");
    case OpenToAll:
        return QStringLiteral("openToAll");
    }
    return {};
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
