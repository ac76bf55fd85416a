// SPDX-License-Identifier: MIT
// Source change notifications: announcement, asynchronous fetch, signal to the owner.
#include "SelectorSharedMemoryHandler.h"

#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"

#include <QDebug>

// The two kinds of change stay written out: each warning carries the place that found the failure,
// and each kind connects its own pair of slots.

void SelectorSharedMemoryHandler::processDataDescriptionChangedIntern(const QString &instanceName)
{
    if (instanceName != this->instanceName) {
        return;
    }
    if (connector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return;
    }
    pendingReply = connector->getProcessDataDescriptionAsynchron(instanceName, QString());
    if (pendingReply.isNull()) {
        qWarning() << "Invalid Reply Pointer pointer for get dbug description for sharedMemory"
                   << instanceName;
        return;
    }
    connect(pendingReply.data(), SIGNAL(dBusServiceFinished()), this,
            SLOT(processDataDescriptionChangedHandleReplySuccess()));
    connect(pendingReply.data(), SIGNAL(dBusServiceError(ErrorContainer)), this,
            SLOT(processDataDescriptionChangedHandleReplyError(ErrorContainer)));
}

void SelectorSharedMemoryHandler::propertyChangedIntern(const QString &instanceName)
{
    if (instanceName != this->instanceName) {
        return;
    }
    if (connector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return;
    }
    pendingReply = connector->getProcessDataDescriptionAsynchron(instanceName, QString());
    if (pendingReply.isNull()) {
        qWarning() << "Invalid Reply Pointer pointer for get dbug description for sharedMemory"
                   << instanceName;
        return;
    }
    connect(pendingReply.data(), SIGNAL(dBusServiceFinished()), this,
            SLOT(propertyChangedHandleReplySuccess()));
    connect(pendingReply.data(), SIGNAL(dBusServiceError(ErrorContainer)), this,
            SLOT(propertyChangedHandleReplyError(ErrorContainer)));
}

void SelectorSharedMemoryHandler::processDataDescriptionChangedHandleReplySuccess()
{
    const QVariant description = pendingReply->getReply();
    if (!description.isValid()) {
        qWarning() << "Invalid Processdescription received" << sharedMemoryKey;
        return;
    }
    processDescription = description;
    // The copy outlives this object, which a receiver's client may release.
    const QString key = sharedMemoryKey;
    Q_EMIT processDataDescriptionChanged(key);
}

void SelectorSharedMemoryHandler::propertyChangedHandleReplySuccess()
{
    const QVariant description = pendingReply->getReply();
    if (!description.isValid()) {
        qWarning() << "Invalid Processdescription received" << sharedMemoryKey;
        return;
    }
    processDescription = description;
    // The copy outlives this object, which a receiver's client may release.
    const QString key = sharedMemoryKey;
    Q_EMIT propertyChanged(key);
}

void SelectorSharedMemoryHandler::processDataDescriptionChangedHandleReplyError(
    const ErrorContainer &error)
{
    qWarning() << "DBus error" << error;
}

void SelectorSharedMemoryHandler::propertyChangedHandleReplyError(const ErrorContainer &error)
{
    qWarning() << "DBus error" << error;
}
