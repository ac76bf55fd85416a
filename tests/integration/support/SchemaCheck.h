// SPDX-License-Identifier: MIT
// Holds JSON against the installed schemas.
#ifndef SCHEMACHECK_H
#define SCHEMACHECK_H

#include "ChildProcess.h"

/// What the schemas have against the documents, one a line; empty when nothing.
inline QByteArray schemaProblems(const QByteArray &documents)
{
    ChildProcess check("python3", {CHECK_SCHEMA, SCHEMA_DIRECTORY});
    if (!check.start()) {
        return "python3 does not start";
    }
    check.write(documents.trimmed());
    check.closeInput();
    const bool ended = check.waitForEnd();
    const bool silent = check.output().trimmed().isEmpty();
    return ended && silent && check.exitCode() == 0 ? QByteArray() : check.report();
}

#endif
