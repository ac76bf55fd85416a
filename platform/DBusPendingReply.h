// SPDX-License-Identifier: MIT
// An asynchronous D-Bus call that has not ended yet.
#ifndef DBUSPENDINGREPLY_H
#define DBUSPENDINGREPLY_H

#include "ErrorContainer.h"
#include "ProcessDataPlatformExport.h"

#include <QObject>
#include <QScopedPointer>
#include <QVariant>

class DBusPendingReplyPrivate;

/// Reports the end of one asynchronous call, exactly once.
///
/// The library keeps the object until the next call for the same source replaces it, or the source
/// ends. It may release the object from within one of its signals.
///
/// A released reply never reports: when the last shared pointer is gone, neither signal may be
/// emitted or delivered any more, not even one that was already queued. The library's slots rely on
/// that: they read the reply that they hold without a null test.
///
/// Threads: lives in the thread of the connector that made it and emits there, from its event loop,
///          never from within the call that made it.
class PROCESSDATAPLATFORM_EXPORT DBusPendingReply : public QObject
{
    Q_OBJECT

public:
    /// @param state  the implementation's, owned by this object
    explicit DBusPendingReply(DBusPendingReplyPrivate *state);
    ~DBusPendingReply() override;

    /// What the service sent.
    ///
    /// Called by the library from its slot for dBusServiceFinished; with a reply that was replaced
    /// meanwhile but lives on, the newer reply is asked, perhaps before it has ended.
    ///
    /// @returns the description; an invalid QVariant when there is none or the call has not ended
    QVariant getReply();

Q_SIGNALS:
    /// A reply has arrived and getReply() has it.
    void dBusServiceFinished();

    /// The call failed.
    void dBusServiceError(const ErrorContainer &error);

private:
    friend class DBusPendingReplyPrivate;
    const QScopedPointer<DBusPendingReplyPrivate> d;
};

#endif
