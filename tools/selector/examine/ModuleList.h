// SPDX-License-Identifier: MIT
// The modules in a list of registered providers.
#ifndef MODULELIST_H
#define MODULELIST_H

#include "Finding.h"

#include <QStringList>
#include <QVector>

struct Module
{
    QString name; ///< null where the list has none that can be read
    QStringList selectorTypes; ///< OBJECT/INSTANCE/TYPE
};

/// All modules of the list with all their selectors.
///
/// @param providerList  JSON text as the registry gives it
QVector<Module> modulesOfList(const QString &providerList);

/// Modules that offer selectors of a type, with these selectors.
QVector<Module> modulesOfType(const QString &providerList, const QString &type);

/// Asks the registry for the names of its modules; what has none that can be read is left out.
///
/// Threads: any; blocks for a D-Bus call.
Answer fetchModuleNames(QStringList &names);

#endif
