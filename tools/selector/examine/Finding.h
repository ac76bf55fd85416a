// SPDX-License-Identifier: MIT
// Why a selector has no value.
#ifndef FINDING_H
#define FINDING_H

#include "ExitCode.h"
#include "ProcessDataDefinitions.h"

#include <QString>

/// One reason. The codes are documented and never change their meaning.
struct Finding
{
    enum Code {
        None,
        Deactivated,
        InvalidUrl,
        WrongScheme,
        ServiceMissing,
        ServiceFailed,
        NoSuchInstance,
        NoSuchLeaf,
        NotReadable,
        ReadOnly,
        ValueRefused,
        NoSuchProperty,
        Duplicate,
        NotWritten,
        NotVerified,
        LeftOut,
        TimeLimit, ///< a service did not answer in time
        Denied, ///< permission is missing
    };

    Code code = None;
    QString text; ///< for people

    /// The code as it stands in JSON: "noSuchLeaf" and the like; empty for None.
    QString codeName() const;

    /// What the reason means for a script.
    ExitCode exitCode() const;
};

/// How far a value with an error type can be trusted, for people; empty for NoError.
QString explainErrorType(ProcessDataDefinitions::ErrorTypes errorType);

#endif
