// SPDX-License-Identifier: MIT
// Builds one source's process-data tree and attaches it to the source's buffer.
#include "ProcessDataManager.h"

#include "BufferAttachment.h"
#include "MemoryLog.h"
#include "ProcessDataDescription.h"
#include "ProcessDataRoot.h"
#include "PropertyManagerConst.h"

#include <QMutexLocker>

namespace {

// The description's text; nothing when it is of any type but those that services send.
std::optional<QByteArray> descriptionText(const QVariant &description)
{
    if (description.userType() == QMetaType::QString) {
        QByteArray text = description.toString().toUtf8();
        text.squeeze(); // Qt takes room for the worst, three bytes a character; the tree keeps it
        return text;
    }
    if (description.userType() == QMetaType::QByteArray) {
        return description.toByteArray();
    }
    return std::nullopt;
}

std::optional<ProcessDataDescription> parsed(const QVariant &description,
                                             const QString &fileExtension)
{
    if (fileExtension != PropertyManagerConst::getProcessDataDescriptionFileExtension()) {
        qCWarning(memoryLog) << "Process-data description refused: unknown file extension"
                             << fileExtension;
        return std::nullopt;
    }
    const std::optional<QByteArray> text = descriptionText(description);
    if (!text) {
        qCWarning(memoryLog) << "Process-data description refused: expected a text, got"
                             << (description.isValid() ? description.typeName() : "nothing");
        return std::nullopt;
    }
    QString error;
    std::optional<ProcessDataDescription> result
        = parseDescription(*text, DescriptionForm::Published, error);
    if (!result) {
        qCWarning(memoryLog).noquote() << "Process-data description refused:" << error;
    }
    return result;
}

QString sourceText(const ProcessDataDescription &description)
{
    return QStringLiteral("source %1/%2/%3, buffer %4:")
        .arg(description.module, description.object, description.instance,
             description.buffer->name);
}

QSharedPointer<SharedMemoryPrivate> attached(const ProcessDataDescription &description)
{
    QString error;
    QSharedPointer<SharedMemoryPrivate> memory = attachBuffer(description, error);
    if (memory.isNull()) {
        qCWarning(memoryLog).noquote() << "Not attached to" << sourceText(description) << error;
    } else if (!isBufferLive(memory->header())) {
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
    std::optional<ProcessDataDescription> content = parsed(description, fileExtension);
    if (!content) {
        return {};
    }
    if (initType == InitTypeAttach) {
        bufferName = content->buffer->name;
        sharedMemory.d = ::attached(*content);
        attached = !sharedMemory.d.isNull();
    }
    rootElement = QSharedPointer<ProcessDataRoot>::create(std::move(*content), sharedMemory.d);
    return rootElement;
}

bool ProcessDataManager::isBufferValid() const
{
    const QMutexLocker lock(&mutex);
    return attached && isBufferLive(sharedMemory.d->header());
}
