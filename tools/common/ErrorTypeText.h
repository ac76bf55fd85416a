// SPDX-License-Identifier: MIT
// Error types of values, for people and for programs.
#ifndef ERRORTYPETEXT_H
#define ERRORTYPETEXT_H

#include "ProcessDataAccess.h"

#include <QString>

/// Its name ("NoError", …); "ErrorType7" for one without a name.
QString errorTypeName(ProcessDataAccess::ErrorType errorType);

/// How far a value with it can be trusted, for people; empty for NoError.
QString explainErrorType(ProcessDataAccess::ErrorType errorType);

#endif
