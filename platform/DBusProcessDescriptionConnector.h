// SPDX-License-Identifier: MIT
// D-Bus client of the process-description service of one object of one module.
#ifndef DBUSPROCESSDESCRIPTIONCONNECTOR_H
#define DBUSPROCESSDESCRIPTIONCONNECTOR_H

#include "DBusConnectorBase.h"
#include "DBusReply.h"
#include "ProcessDataPlatformExport.h"

#include <QSharedPointer>
#include <QString>

class DBusPendingReply;
class DBusProcessDescriptionConnectorPrivate;

/// Fetches process-data descriptions and relays their announcements.
///
/// A connector exists whether or not its service is there yet, and survives restarts of the
/// service.
class PROCESSDATAPLATFORM_EXPORT DBusProcessDescriptionConnector : public DBusConnectorBase
{
    Q_OBJECT

public:
    /// Called by the library once for each source, with the URL's module and object. Must not wait
    /// for the service.
    ///
    /// @param moduleName  decoded, as SelectorUrlHandler::getModuleName() gives it
    /// @param objectName  decoded, as SelectorUrlHandler::getObjectName() gives it
    /// @returns the connector; null when no connection to the bus could be made
    static QSharedPointer<DBusProcessDescriptionConnector>
    createAndConnect(const QString &moduleName, const QString &objectName);

    ~DBusProcessDescriptionConnector() override;

    /// Fetches the description of one instance and waits for it.
    ///
    /// Called by the library while it holds its own lock: must return within a bounded time and
    /// must not run a nested event loop, in which a queued announcement would call the library
    /// again.
    ///
    /// @param instanceName  of the source's URL
    /// @param reserved      without meaning in this platform; the library passes an empty string
    /// @returns the description's JSON text as a QString, or the error
    DBusReply getProcessDataDescription(const QString &instanceName, const QString &reserved) const;

    /// Asks for the description of one instance without waiting for it.
    ///
    /// Called by the library for each announcement of its instance.
    ///
    /// @param instanceName  of the source's URL
    /// @param reserved      without meaning in this platform; the library passes an empty string
    /// @returns the pending reply, which reports when the call has ended; null when the call could
    ///          not be placed
    QSharedPointer<DBusPendingReply>
    getProcessDataDescriptionAsynchron(const QString &instanceName, const QString &reserved) const;

Q_SIGNALS:
    /// The service announced a new description of an instance, or came up with it.
    ///
    /// @param instanceName  which; may be empty
    /// Threads: any; the library's slots run in the thread of the connector.
    void processDataDescriptionChanged(const QString &instanceName);

    /// The service announced changed properties of an instance; the same applies.
    ///
    /// @param instanceName  which; may be empty
    void propertyChanged(const QString &instanceName);

private:
    friend class DBusProcessDescriptionConnectorPrivate;
    explicit DBusProcessDescriptionConnector(DBusProcessDescriptionConnectorPrivate *state);
};

#endif
