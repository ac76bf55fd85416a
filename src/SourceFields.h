// SPDX-License-Identifier: MIT
// How warnings name a source.
#ifndef SOURCEFIELDS_H
#define SOURCEFIELDS_H

#include <QDebug>
#include <QString>

/// Streams a source's names with their labels. Only refers to them: use it within one statement.
struct SourceFields
{
    const QString &moduleName;
    const QString &objectName;
    const QString &instanceName;
};

inline QDebug operator<<(QDebug debug, const SourceFields &source)
{
    return debug << "ModuleName:" << source.moduleName << "ObjectName:" << source.objectName
                 << "InstanceName:" << source.instanceName;
}

#endif
