// SPDX-License-Identifier: MIT
// The manager.
#ifndef PROCESSDATAMANAGER_H
#define PROCESSDATAMANAGER_H

#include "ConfigurationAndProcessDataBase.h"
#include "SharedMemory.h"

#include <QJsonArray>
#include <QMutex>

class ProcessDataManager
{
public:
    enum class InitTypeSharedMemory { Detached, Attached };
    ProcessDataManager();
    virtual ~ProcessDataManager();
    ProcessDataManager(const ProcessDataManager &) = delete;
    QSharedPointer<ConfigurationAndProcessDataBase>
    createProcessDataFromJson(const QVariant &description, const QString &fileExtension,
                              InitTypeSharedMemory initType);
    bool isBufferValid() const;

private:
    void addLeaves(const QJsonArray &elements, const QString &prefix);

    QSharedPointer<ConfigurationAndProcessDataBase> root;
    SharedMemory segment;
    QString name;
    QMutex mutex;
};

#endif
