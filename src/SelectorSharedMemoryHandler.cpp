// SPDX-License-Identifier: MIT
// Source connection: connector, description, tree and buffer.
#include "SelectorSharedMemoryHandler.h"

#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "DBusReply.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "PropertyManagerConst.h"
#include "SourceFields.h"

#include <QDebug>

SelectorSharedMemoryHandler::SelectorSharedMemoryHandler(const QString &sharedMemoryKey,
                                                         const QString &moduleName,
                                                         const QString &objectName,
                                                         const QString &instanceName,
                                                         QObject *parent)
    : QObject(parent)
    , sharedMemoryKey(sharedMemoryKey)
    , moduleName(moduleName)
    , objectName(objectName)
    , instanceName(instanceName)
    , connector(DBusProcessDescriptionConnector::createAndConnect(moduleName, objectName))
{
    if (connector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return;
    }
    connect(connector.data(), SIGNAL(processDataDescriptionChanged(QString)), this,
            SLOT(processDataDescriptionChangedIntern(QString)));
    connect(connector.data(), SIGNAL(propertyChanged(QString)), this,
            SLOT(propertyChangedIntern(QString)));
}

SelectorSharedMemoryHandler::~SelectorSharedMemoryHandler() = default;

bool SelectorSharedMemoryHandler::isDBusInterfaceValid()
{
    if (connector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return false;
    }
    return connector->isDBusInterfaceValid();
}

bool SelectorSharedMemoryHandler::isProcessDataBufferValid()
{
    return !processDataManager.isNull() && processDataManager->isBufferValid();
}

bool SelectorSharedMemoryHandler::attachToProcessBuffer()
{
    if (!updateRootElement(instanceName)) {
        return false;
    }
    if (!rootElement.isNull()) {
        return true;
    }
    qWarning() << "Can't attach to sharedMemory."
               << SourceFields{moduleName, objectName, instanceName};
    return false;
}

bool SelectorSharedMemoryHandler::updateRootElement(const QString &instanceName)
{
    if (connector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return false;
    }
    const SourceFields source{moduleName, objectName, instanceName};
    const DBusReply reply = connector->getProcessDataDescription(instanceName, QString());
    if (reply.isError()) {
        qWarning() << "Read processDataDescription error." << source << reply.getErrorMessage();
        // A failed fetch falls back to the description at hand, which may have come asynchronously.
        if (!processDescription.isValid()) {
            return false;
        }
    } else {
        processDescription = reply.getValue();
        if (!processDescription.isValid()) {
            return false;
        }
    }

    // The previous manager goes before anything is parsed, the previous tree after the new one
    // stands.
    processDataManager = QSharedPointer<ProcessDataManager>::create();
    rootElement = processDataManager->createProcessDataFromJson(
        processDescription, PropertyManagerConst::getProcessDataDescriptionFileExtension(),
        static_cast<ProcessDataManager::InitTypeSharedMemory>(1));
    if (processDataManager->isBufferValid()) {
        return true;
    }
    qWarning() << "SharedMemory buffer not valid." << source;
    return false;
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
SelectorSharedMemoryHandler::getProcessDataLeaf(const QString &url) const
{
    if (rootElement.isNull()) {
        return {};
    }
    auto leaf = rootElement->getLeafProcessDataValue(url);
    if (leaf.isNull()) {
        qWarning() << "Url isn't valid:" << url
                   << SourceFields{moduleName, objectName, instanceName};
    }
    return leaf;
}

QVariant SelectorSharedMemoryHandler::getProcessDescription()
{
    return processDescription;
}

QVector<int> SelectorSharedMemoryHandler::getConnectedLeafIndexList() const
{
    return connectedLeafIndexList;
}

void SelectorSharedMemoryHandler::addConnectedLeafIndex(int index)
{
    connectedLeafIndexList.append(index);
}
