// SPDX-License-Identifier: MIT
// Short names for the selectors and values that most tests use.
#ifndef SELECTORS_H
#define SELECTORS_H

#include "ProcessValue.h"

#include <QString>
#include <QVector>

/// URL of a leaf of the source boiler/sensors/1.
inline QString on(const QString &leaf)
{
    return QStringLiteral("scripted://boiler/sensors/1/") + leaf;
}

/// The same, deactivated.
inline QString off(const QString &leaf)
{
    return on(leaf) + QStringLiteral("?off");
}

/// How warnings name that source.
inline QString sourceFields()
{
    return QStringLiteral(" ModuleName: \"boiler\" ObjectName: \"sensors\" InstanceName: \"1\"");
}

/// What stands for a value that was not obtained: error type 3 and nothing else.
inline bool isErrorValue(const ProcessValue &value)
{
    return static_cast<int>(value.getErrorType()) == 3 && !value.getValue().isValid()
        && value.getTimestamp() == 0;
}

/// A value to write.
inline ProcessValue valueOf(const QVariant &value)
{
    return ProcessValue(value);
}

#endif
