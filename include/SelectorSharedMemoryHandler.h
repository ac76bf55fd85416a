// SPDX-License-Identifier: MIT
// One process-data source: its description, its tree of leaves and its buffer.
#ifndef SELECTORSHAREDMEMORYHANDLER_H
#define SELECTORSHAREDMEMORYHANDLER_H

#include "SelectorHandlerExport.h"

#include "ConfigurationAndProcessDataBase.h"
#include "ErrorContainer.h"

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVariant>
#include <QVector>

class DBusPendingReply;
class DBusProcessDescriptionConnector;
class ProcessDataManager;

/// Binds one instance of one object of one module: fetches its description, builds the tree of its
/// leaves, attaches to its shared-memory buffer and relays announcements of changes.
///
/// SelectorHandlerProcessValue makes one for each source that its selectors name. A client needs
/// the class itself only to look at a source without a list of selectors.
///
/// Nothing throws; a failure shows in the result and, where noted, in a warning that names the
/// source. Threads: use it in the thread that made it; announcements need that thread's event loop.
class SELECTORHANDLER_EXPORT SelectorSharedMemoryHandler : public QObject
{
    Q_OBJECT

public:
    /// Makes the D-Bus client of the source; neither fetches nor attaches anything yet.
    ///
    /// @param sharedMemoryKey  what the signals carry
    /// @param moduleName       module that publishes the source
    /// @param objectName       object within the module
    /// @param instanceName     instance within the object; may be empty
    /// @param parent           owner, or null
    /// Errors:  warns when there is no connection to the bus; the source then never gets a tree.
    SelectorSharedMemoryHandler(const QString &sharedMemoryKey, const QString &moduleName,
                                const QString &objectName, const QString &instanceName,
                                QObject *parent);
    ~SelectorSharedMemoryHandler() override;

    /// Whether the source's service is reachable.
    ///
    /// Errors:  warns when there is no connection to the bus.
    /// Threads: may ask the bus daemon once, for no longer than the time limit of a call.
    bool isDBusInterfaceValid();

    /// Whether a tree was built and its buffer is usable. Silent; never blocks.
    bool isProcessDataBufferValid();

    /// Fetches the description, builds a new tree and attaches it to the buffer.
    ///
    /// Leaves obtained earlier belong to the old tree and must be looked up again. When the fetch
    /// fails, the tree is rebuilt from the description that is held already, if any.
    ///
    /// @returns whether there is a tree with a usable buffer
    /// Errors:  a warning for a fetch that failed, and one more when what was rebuilt from the held
    ///          description is not usable either; one warning for a buffer or a tree that is not
    ///          usable. Silent for a service that answers without a description.
    /// Threads: blocks for the length of one D-Bus call.
    bool attachToProcessBuffer();

    /// The working part of attachToProcessBuffer, for any instance of the object.
    ///
    /// @param instanceName  whose description is fetched and whose buffer is attached
    /// @returns whether a tree was built whose buffer is usable; its root may be null all the same
    /// Errors:  a warning for a fetch that failed, and one for a buffer that is not usable: both
    ///          when the held description was used instead. Silent for a service that answers
    ///          without a description.
    /// Threads: blocks for the length of one D-Bus call.
    bool updateRootElement(const QString &instanceName);

    /// Finds a leaf of the current tree.
    ///
    /// @param url  selector URL
    /// @returns the leaf, valid to read until the next attach and to hold for longer; null without
    ///          a tree (silent) or when the tree has no such leaf (one warning)
    ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
    getProcessDataLeaf(const QString &url) const;

    /// The last description that arrived; invalid when there is none.
    QVariant getProcessDescription();

    /// Positions in the owner's selector list that this source serves, in the order in which they
    /// were added; duplicates are kept.
    QVector<int> getConnectedLeafIndexList() const;

    /// Appends a position to that list.
    ///
    /// @param index  unchecked
    void addConnectedLeafIndex(int index);

Q_SIGNALS:
    /// The description changed and the new one has arrived. The tree is still the old one: whoever
    /// uses it attaches again.
    ///
    /// @param sharedMemoryKey  as given to the constructor
    /// Threads: emitted in the thread that made the handler, from its event loop.
    void processDataDescriptionChanged(const QString &sharedMemoryKey);

    /// Properties changed and the new description has arrived; the same applies.
    ///
    /// @param sharedMemoryKey  as given to the constructor
    void propertyChanged(const QString &sharedMemoryKey);

private Q_SLOTS:
    void processDataDescriptionChangedIntern(const QString &instanceName);
    void propertyChangedIntern(const QString &instanceName);
    void processDataDescriptionChangedHandleReplySuccess();
    void processDataDescriptionChangedHandleReplyError(const ErrorContainer &error);
    void propertyChangedHandleReplySuccess();
    void propertyChangedHandleReplyError(const ErrorContainer &error);

private:
    Q_DISABLE_COPY(SelectorSharedMemoryHandler)

    QString sharedMemoryKey;
    QString moduleName;
    QString objectName;
    QString instanceName;
    QSharedPointer<DBusProcessDescriptionConnector> connector;
    QSharedPointer<ProcessDataManager> processDataManager;
    QSharedPointer<ConfigurationAndProcessDataBase> rootElement;
    QVariant processDescription;
    QVector<int> connectedLeafIndexList;
    QSharedPointer<DBusPendingReply> pendingReply;
};

#endif
