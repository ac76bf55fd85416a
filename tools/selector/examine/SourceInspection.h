// SPDX-License-Identifier: MIT
// A source's description and what is found in the buffer that it names.
#ifndef SOURCEINSPECTION_H
#define SOURCEINSPECTION_H

#include "BufferInspection.h"
#include "BusQueryResult.h"

#include <QString>

struct SourceInspection
{
    QString description; ///< as the service sends it
    BufferInspection buffer;
};

/// Asks the service and looks at the buffer. A publisher may replace its buffer in between: when
/// the buffer is not good and the service describes another one by now, that one counts.
///
/// @param error  why the service gave no description
/// Threads: any; blocks for D-Bus calls. Runs no event loop.
BusQueryResult inspectSource(const QString &module, const QString &object, const QString &instance,
                             SourceInspection &source, QString &error);

#endif
