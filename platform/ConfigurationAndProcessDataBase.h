// SPDX-License-Identifier: MIT
// A node of a source's process-data tree.
#ifndef CONFIGURATIONANDPROCESSDATABASE_H
#define CONFIGURATIONANDPROCESSDATABASE_H

#include "ProcessDataPlatformExport.h"

#include <QSharedPointer>
#include <QString>
#include <QVariant>

class ProcessDataValue;

/// A node of the tree that ProcessDataManager builds from one process-data description.
///
/// Lifetime: the library holds the root until the next tree of the source is stored, and leaves
///           until they are looked up again; a node must stay usable for as long as it is held,
///           also after its manager is gone.
/// Threads: the library calls a tree's nodes under its own lock, one call at a time for each
///          handler. Several handlers may hold trees of the same source in several threads.
class PROCESSDATAPLATFORM_EXPORT ConfigurationAndProcessDataBase
{
public:
    /// A leaf; null means unresolved.
    using ProcessDataValueSharedPointer = QSharedPointer<ProcessDataValue>;

    virtual ~ConfigurationAndProcessDataBase();
    ConfigurationAndProcessDataBase(const ConfigurationAndProcessDataBase &) = delete;
    ConfigurationAndProcessDataBase &operator=(const ConfigurationAndProcessDataBase &) = delete;

    /// Finds a leaf.
    ///
    /// Called by the library on the root, for each selector, while the list is built and after each
    /// change of the source.
    ///
    /// @param url  selector URL exactly as SelectorUrlHandler::getUrl() returned it
    /// @returns the leaf that the URL names; null when the tree has none. The same leaf for the
    ///          same URL for as long as the tree lives. Must not log: the library reports an
    ///          unknown URL.
    virtual ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) = 0;

    /// Reads one property of the node's description.
    ///
    /// Called by the library on leaves: for the read-only flag, for each getProperty of a client
    /// without asking hasLeafProperty first, and for getProperties after hasLeafProperty.
    ///
    /// @param name  a key of the description, compared with case
    /// @returns the property as its description gives it, in its own unit; an invalid QVariant for
    ///          a name that the node lacks.
    virtual QVariant readLeafProperty(const QString &name) const = 0;

    /// Whether the node carries a property of that name. Called by the library before
    /// readLeafProperty when one property is read across all selectors.
    ///
    /// @param name  as above
    /// @returns whether readLeafProperty has something to give
    virtual bool hasLeafProperty(const QString &name) const = 0;

protected:
    ConfigurationAndProcessDataBase();
};

#endif
