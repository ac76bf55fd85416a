// SPDX-License-Identifier: MIT
// Reads module names and matching selector types out of the list of registered providers.
#ifndef SELECTORHANDLERCONVENIENCEFUNCTIONS_H
#define SELECTORHANDLERCONVENIENCEFUNCTIONS_H

#include "SelectorHandlerExport.h"

#include <QJsonObject>
#include <QString>
#include <QVariant>
#include <QVector>

/// Helps a client to choose selectors: which modules offer selectors of a type?
///
/// All functions are static, keep nothing between calls and never throw; bad entries are left out
/// with one warning each.
///
/// Threads: any, also at the same time.
class SELECTORHANDLER_EXPORT SelectorHandlerConvenienceFunctions
{
public:
    /// One module that offers selectors of the requested type.
    struct ModuleData
    {
        QString moduleName; ///< null when the module has no readable name
        QVector<QString> selectorTypeList; ///< full text of each matching entry; never empty
    };

    SelectorHandlerConvenienceFunctions();
    virtual ~SelectorHandlerConvenienceFunctions();

    /// Reads a module's name.
    ///
    /// @param jsonObjectModule  one object of the provider list
    /// @returns the name; a null string, after one warning, when it is missing or no string
    static QString getModuleNameFromJsonObjectModule(const QJsonObject &jsonObjectModule);

    /// Splits a provider list into its modules.
    ///
    /// @param registeredProviderList  its string form is the JSON text of an array
    /// @returns the objects of the array in list order; empty when the text is no JSON array.
    ///          Each element that is no object is left out with one warning.
    static QVector<QJsonObject> getJsonObjectModuleList(const QVariant &registeredProviderList);

    /// Collects the modules that offer selectors of one type.
    ///
    /// @param registeredProviderList  as above
    /// @param selectorTypeName        compared, with case, with the last "/"-separated segment of
    ///                                each entry of a module's selector type list; a name with "/"
    ///                                never matches
    /// @returns one record for each module with a match, in list order. A module without a readable
    ///          selector type list is left out with one warning, one without a match silently.
    static QVector<ModuleData>
    getModuleDataFromRegisteredProviderList(const QVariant &registeredProviderList,
                                            const QString &selectorTypeName);
};

#endif
