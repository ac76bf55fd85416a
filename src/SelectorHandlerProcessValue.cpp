// SPDX-License-Identifier: MIT
// Handler construction and the list of selectors: one record for each URL, one source for each key.
#include "SelectorHandlerProcessValue.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "ProcessDataValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlBlock.h"
#include "SelectorUrlHandler.h"
#include "SystemStatusManagerDBusConnector.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>

namespace {

const QString &textOfEmptyJsonObject()
{
    static const QString text = QString::fromUtf8(QJsonDocument(QJsonObject()).toJson());
    return text;
}

// A platform is asked for a source's names in the order in which they form the key. One expression
// would leave the order to the compiler.
struct SourceNames
{
    explicit SourceNames(const SelectorUrlHandler &url)
        : moduleName(url.getModuleName())
        , objectName(url.getObjectName())
        , instanceName(url.getInstance())
    {
    }

    QString key() const
    {
        return moduleName + QLatin1Char('_') + objectName + QLatin1Char('_') + instanceName;
    }

    const QString moduleName; // members are made in the order in which they are declared
    const QString objectName;
    const QString instanceName;
};

} // namespace

SelectorHandlerProcessValue::ProcessDataInformation::ProcessDataInformation()
    : propertiesAsJsonString(textOfEmptyJsonObject())
{
}

SelectorHandlerProcessValue::SelectorHandlerProcessValue(QObject *parent)
    : QObject(parent)
    , statusManagerConnector(SystemStatusManagerDBusConnector::createAndConnect())
{
    if (statusManagerConnector.isNull()) {
        qWarning() << "Invalid pointer to connector!";
        return;
    }
    connect(statusManagerConnector.data(), SIGNAL(orvalisStartupReady()), this,
            SLOT(orvalisStartupReady()));
}

SelectorHandlerProcessValue::SelectorHandlerProcessValue(const QVector<QString> &selectorUrls,
                                                         QObject *parent)
    : QObject(parent)
{
    setSelectorUrls(selectorUrls);
}

SelectorHandlerProcessValue::~SelectorHandlerProcessValue() = default;

void SelectorHandlerProcessValue::setSelectorUrls(const QVector<QString> &selectorUrls)
{
    const QMutexLocker lock(&mutex);
    processDataInformationList.clear(); // records first: they hold iterators into the map below
    sharedMemoryHandlers.clear();

    processDataInformationList.reserve(selectorUrls.size());
    SelectorUrlBlock urls(selectorUrls.size());
    for (const QString &selectorUrl : selectorUrls) {
        ProcessDataInformation record;
        record.selectorUrlHandler = urls.parse(selectorUrl);
        const SelectorUrlHandler &url = *record.selectorUrlHandler;
        if (url.isSelectorDeactivated()) {
            // keeps its place and gets no source; not judged, so not reported
        } else if (!url.isValid()) {
            qWarning() << "SelectorUrl not valid:" << selectorUrl;
        } else if (url.getScheme()
                   != ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()) {
            qWarning() << "No processData scheme selected:" << url.getScheme() << url.getUrl();
        } else {
            connectToSource(record, processDataInformationList.size());
        }
        if (!record.processDataLeaf.isNull()) {
            record.propertiesAsJsonString = getPropertiesAsJsonString(record.processDataLeaf);
            record.readOnly
                = record.processDataLeaf
                      ->readLeafProperty(
                          ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly())
                      .toBool();
        }
        processDataInformationList.append(record);
    }
}

void SelectorHandlerProcessValue::connectToSource(ProcessDataInformation &record, int index)
{
    const SelectorUrlHandler &url = *record.selectorUrlHandler;
    const QString sharedMemoryKey = SourceNames(url).key();
    SharedMemoryIterator source = sharedMemoryHandlers.find(sharedMemoryKey);
    const bool isNew = source == sharedMemoryHandlers.end();
    if (isNew) {
        source = createSource(sharedMemoryKey, url);
    }
    SelectorSharedMemoryHandler &handler = *source.value();
    handler.addConnectedLeafIndex(index);
    record.sharedMemoryIterator = source;
    // Only the first selector of a source attaches it. Later ones take what there is, also the tree
    // of a failed attach.
    if (handler.isDBusInterfaceValid() && (!isNew || handler.attachToProcessBuffer())) {
        record.processDataLeaf = handler.getProcessDataLeaf(url.getUrl());
    }
}

SelectorHandlerProcessValue::SharedMemoryIterator
SelectorHandlerProcessValue::createSource(const QString &sharedMemoryKey,
                                          const SelectorUrlHandler &url)
{
    const SourceNames names(url);
    const auto handler = QSharedPointer<SelectorSharedMemoryHandler>::create(
        sharedMemoryKey, names.moduleName, names.objectName, names.instanceName, nullptr);
    connect(handler.data(), SIGNAL(processDataDescriptionChanged(QString)), this,
            SLOT(processDataDescriptionChanged(QString)));
    connect(handler.data(), SIGNAL(propertyChanged(QString)), this, SLOT(propertyChanged(QString)));
    return sharedMemoryHandlers.insert(sharedMemoryKey, handler);
}
