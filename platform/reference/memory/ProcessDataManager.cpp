// SPDX-License-Identifier: MIT
// Builds one source's process-data tree and attaches it to the source's buffer.
#include "ProcessDataManager.h"

#include "BufferAttachment.h"
#include "MemoryLog.h"
#include "PreparedDescription.h"
#include "ProcessDataRoot.h"
#include "PropertyManagerConst.h"

#include <QMutexLocker>

namespace {

// What the description is read to; null when it is of any type but those that services send.
PreparedDescriptionPointer prepared(const QVariant &description)
{
    if (description.userType() == QMetaType::QString) {
        return prepareDescription(description.toString());
    }
    if (description.userType() == QMetaType::QByteArray) {
        const auto result = QSharedPointer<PreparedDescription>::create();
        result->content = parseDescription(description.toByteArray(), DescriptionForm::Published,
                                           result->error);
        return result;
    }
    return {};
}

PreparedDescriptionPointer parsed(const QVariant &description, const QString &fileExtension)
{
    if (fileExtension != PropertyManagerConst::getProcessDataDescriptionFileExtension()) {
        qCWarning(memoryLog) << "Process-data description refused: unknown file extension"
                             << fileExtension;
        return {};
    }
    PreparedDescriptionPointer result = prepared(description);
    if (result.isNull()) {
        qCWarning(memoryLog) << "Process-data description refused: expected a text, got"
                             << (description.isValid() ? description.typeName() : "nothing");
        return {};
    }
    if (!result->content) {
        qCWarning(memoryLog).noquote() << "Process-data description refused:" << result->error;
        return {};
    }
    return result;
}

QString sourceText(const ProcessDataDescription &description)
{
    return QStringLiteral("source %1, buffer %2:")
        .arg(description.source.toString(), description.buffer->name);
}

QSharedPointer<SharedMemoryPrivate> attached(const ProcessDataDescription &description)
{
    QString error;
    QSharedPointer<SharedMemoryPrivate> memory = attachBuffer(description, error);
    if (memory.isNull()) {
        qCWarning(memoryLog).noquote() << "Not attached to" << sourceText(description) << error;
    } else if (!isBufferLive(memory->life())) {
        qCWarning(memoryLog).noquote()
            << "Attached to" << sourceText(description) << "its publisher is gone";
    }
    return memory;
}

}

ProcessDataManager::ProcessDataManager() = default;

ProcessDataManager::~ProcessDataManager() = default;

QSharedPointer<ConfigurationAndProcessDataBase> ProcessDataManager::createProcessDataFromJson(
    const QVariant &description, const QString &fileExtension, InitTypeSharedMemory initType)
{
    const QMutexLocker lock(&mutex);
    rootElement.clear();
    sharedMemory.d.clear();
    bufferName.clear();
    attached = false;
    const PreparedDescriptionPointer prepared = parsed(description, fileExtension);
    if (prepared.isNull()) {
        return {};
    }
    if (initType == InitTypeAttach) {
        bufferName = prepared->content->buffer->name;
        sharedMemory.d = ::attached(*prepared->content);
        attached = !sharedMemory.d.isNull();
    }
    rootElement = QSharedPointer<ProcessDataRoot>::create(prepared, sharedMemory.d);
    return rootElement;
}

bool ProcessDataManager::isBufferValid() const
{
    const QMutexLocker lock(&mutex);
    return attached && isBufferLive(sharedMemory.d->life()) && !sharedMemory.d->isCutShort();
}
