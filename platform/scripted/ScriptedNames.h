// SPDX-License-Identifier: MIT
// Names that a scripted platform answers to.
#ifndef SCRIPTEDNAMES_H
#define SCRIPTEDNAMES_H

#include <QString>

/// The names that a platform lays down: those of the reference platform unless told otherwise.
///
/// Change them when the device's platform has others, so that an application is tested with the
/// selector URLs and property names that it will meet there.
struct ScriptedNames
{
    QString urlScheme = QStringLiteral("processdata"); ///< of selector URLs
    QString deactivatedQuery = QStringLiteral("?deactivated"); ///< end of a deactivated selector
    QString readOnlyProperty = QStringLiteral("readOnly"); ///< flag among a leaf's properties
    QString selectorTypeListKey = QStringLiteral("selectorTypeList"); ///< in a provider's data
    QString descriptionFileExtension = QStringLiteral("pdd"); ///< without a dot
    QString providerModuleKey = QStringLiteral("moduleName"); ///< in the list of providers
    QString providerDataKey = QStringLiteral("additionalData"); ///< in the list of providers
};

#endif
