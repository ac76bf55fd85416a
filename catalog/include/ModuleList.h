// SPDX-License-Identifier: MIT
// The modules in a list of registered providers.
#ifndef MODULELIST_H
#define MODULELIST_H

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

#endif
