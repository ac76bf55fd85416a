// SPDX-License-Identifier: MIT
// Change propagation: a source's announcement becomes a list of the client's indices.
#include "SelectorHandlerProcessValue.h"

#include "ProcessDataValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlHandler.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QDebug>
#include <QMutexLocker>
#include <QPointer>

void SelectorHandlerProcessValue::orvalisStartupReady()
{
    if (!statusManagerConnector.isNull()) {
        disconnect(statusManagerConnector.data(), SIGNAL(orvalisStartupReady()), this,
                   SLOT(orvalisStartupReady()));
    } else {
        qWarning() << "Invalid pointer to connector!";
    }

    // Each refresh may run a client's slot, which may replace the list or delete this handler: go
    // on from the last key, never from an iterator.
    const QPointer<SelectorHandlerProcessValue> self(this);
    SharedMemoryIterator source = sharedMemoryHandlers.begin();
    while (source != sharedMemoryHandlers.end()) {
        const QString sharedMemoryKey = source.key();
        if (source.value().isNull()) {
            qWarning() << "Nullpointer access SelectorSharedMemoryHandler" << sharedMemoryKey;
        } else if (!source.value()->isProcessDataBufferValid()) {
            setNewSharedMemoryDataProcessDataDescriptionChanged(source);
            if (self.isNull()) {
                return;
            }
        }
        source = sharedMemoryHandlers.upperBound(sharedMemoryKey);
    }
}

void SelectorHandlerProcessValue::processDataDescriptionChanged(const QString &sharedMemoryKey)
{
    const SharedMemoryIterator source = sharedMemoryHandlers.find(sharedMemoryKey);
    if (source == sharedMemoryHandlers.end()) {
        return; // queued before the list was replaced
    }
    setNewSharedMemoryDataProcessDataDescriptionChanged(source);
}

void SelectorHandlerProcessValue::propertyChanged(const QString &sharedMemoryKey)
{
    const SharedMemoryIterator source = sharedMemoryHandlers.find(sharedMemoryKey);
    if (source == sharedMemoryHandlers.end()) {
        return; // queued before the list was replaced
    }
    QVector<int> changedIndexList;
    {
        const QMutexLocker lock(&mutex);
        changedIndexList = setNewSharedMemoryData(source);
    }
    if (!changedIndexList.isEmpty()) {
        Q_EMIT propertyChanged(changedIndexList); // mutex is free: a direct slot may read values
    }
}

void SelectorHandlerProcessValue::setNewSharedMemoryDataProcessDataDescriptionChanged(
    const SharedMemoryIterator &sharedMemoryIterator)
{
    QVector<int> changedIndexList;
    {
        const QMutexLocker lock(&mutex);
        changedIndexList = setNewSharedMemoryData(sharedMemoryIterator);
    }
    if (!changedIndexList.isEmpty()) {
        Q_EMIT processDataDescriptionChanged(changedIndexList);
    }
}

QVector<int> SelectorHandlerProcessValue::setNewSharedMemoryData(
    const SharedMemoryIterator &sharedMemoryIterator)
{
    QVector<int> changedIndexList;
    const QString &sharedMemoryKey = sharedMemoryIterator.key();
    if (sharedMemoryIterator.value().isNull()) {
        qWarning() << "Nullpointer access SelectorSharedMemoryHandler:" << sharedMemoryKey;
        return changedIndexList;
    }
    SelectorSharedMemoryHandler &handler = *sharedMemoryIterator.value();
    if (!handler.isDBusInterfaceValid()) {
        qWarning() << "SharedMemory is not valid:" << sharedMemoryKey;
    } else if (!handler.attachToProcessBuffer()) {
        qWarning() << "Can't attach to SharedMemory:" << sharedMemoryKey;
    }

    // A source that failed is walked all the same: its leaves may be gone, and clients are told.
    const QVector<int> connectedIndices = handler.getConnectedLeafIndexList();
    for (const int index : connectedIndices) {
        if (index >= processDataInformationList.size()) {
            qWarning() << "Index" << index << "is not valid. Max possible index:"
                       << processDataInformationList.size() - 1 << sharedMemoryKey;
            continue;
        }
        ProcessDataInformation &record = processDataInformationList[index];
        record.processDataLeaf = handler.getProcessDataLeaf(record.selectorUrlHandler->getUrl());
        const QString json = getPropertiesAsJsonString(record.processDataLeaf);
        if (json != record.propertiesAsJsonString) {
            record.propertiesAsJsonString = json;
            changedIndexList.append(index);
        }
    }
    return changedIndexList;
}
