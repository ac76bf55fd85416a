// SPDX-License-Identifier: MIT
// Names of the reasons.
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
    default:
        return ExitSomeFailed;
    }
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
