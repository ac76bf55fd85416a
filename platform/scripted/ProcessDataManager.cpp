// SPDX-License-Identifier: MIT
// Managers whose trees and buffers the script decides.
#include "ProcessDataManager.h"

#include "CallRecord.h"
#include "Script.h"
#include "ScriptedTree.h"

namespace {

const QString className = QStringLiteral("ProcessDataManager");
const QString segmentClass = QStringLiteral("SharedMemory");

} // namespace

/// What a manager of this body remembers: its number and the source that it was given.
class SharedMemoryPrivate
{
public:
    QString number;
    QSharedPointer<SourceScript> source;
};

SharedMemory::SharedMemory()
    : d(QSharedPointer<SharedMemoryPrivate>::create())
{
    CallRecord::instance().born(segmentClass);
}

SharedMemory::~SharedMemory()
{
    CallRecord::instance().died(segmentClass, d->number);
}

ProcessDataManager::ProcessDataManager()
{
    sharedMemory.d->number = QString::number(CallRecord::instance().nextNumber(className));
    CallRecord::instance().born(className);
    CallRecord::instance().called(className, sharedMemory.d->number, className);
}

ProcessDataManager::~ProcessDataManager()
{
    CallRecord::instance().died(className, sharedMemory.d->number);
}

// The root is not kept here, so that its end shows when the library lets go of it.
QSharedPointer<ConfigurationAndProcessDataBase> ProcessDataManager::createProcessDataFromJson(
    const QVariant &description, const QString &fileExtension, InitTypeSharedMemory initType)
{
    CallRecord::instance().called(className, sharedMemory.d->number,
                                  QStringLiteral("createProcessDataFromJson"),
                                  {CallRecord::quoted(description.toString()),
                                   CallRecord::quoted(fileExtension), QString::number(initType)});
    sharedMemory.d->source = Script::describedBy(description);
    attached = !sharedMemory.d->source.isNull();
    if (!attached || !sharedMemory.d->source->hasRoot) {
        return {};
    }
    return QSharedPointer<ScriptedRootNode>::create(sharedMemory.d->source,
                                                    sharedMemory.d->number.toInt());
}

bool ProcessDataManager::isBufferValid() const
{
    CallRecord::instance().called(className, sharedMemory.d->number,
                                  QStringLiteral("isBufferValid"));
    return attached && sharedMemory.d->source->usable();
}
