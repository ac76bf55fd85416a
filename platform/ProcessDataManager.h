// SPDX-License-Identifier: MIT
// Builds one source's process-data tree and attaches it to the source's buffer.
#ifndef PROCESSDATAMANAGER_H
#define PROCESSDATAMANAGER_H

#include "ProcessDataPlatformExport.h"
#include "SharedMemory.h"

#include <QMutex>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

class ConfigurationAndProcessDataBase;

/// Owns one source's process data and its attachment to shared memory.
///
/// The library makes a fresh manager each time a description is loaded, releases the previous one
/// just before, and drops the manager with its source. Nothing below may depend on an earlier
/// manager.
///
/// Threads: used by one thread at a time; isBufferValid may be asked in any.
class PROCESSDATAPLATFORM_EXPORT ProcessDataManager
{
public:
    /// How the buffer is reached. The library passes the enumerator whose number is 1.
    enum InitTypeSharedMemory {
        InitTypeNone = 0, ///< build the tree only; no leaf can be read
        InitTypeAttach = 1, ///< attach to the buffer that the publisher made
    };

    ProcessDataManager();
    virtual ~ProcessDataManager();
    ProcessDataManager(const ProcessDataManager &) = delete;
    ProcessDataManager &operator=(const ProcessDataManager &) = delete;

    /// Builds the tree of a description and attaches it to its buffer.
    ///
    /// Called by the library once, right after construction.
    ///
    /// @param description    as the service sent it: its JSON text
    /// @param fileExtension  PropertyManagerConst::getProcessDataDescriptionFileExtension()
    /// @param initType       InitTypeAttach
    /// @returns the root of the tree, also when only the buffer could not be attached (its leaves
    ///          then cannot be read); null when the description is refused.
    /// Errors:  one warning that names the source and what is wrong with the description or buffer.
    QSharedPointer<ConfigurationAndProcessDataBase>
    createProcessDataFromJson(const QVariant &description, const QString &fileExtension,
                              InitTypeSharedMemory initType);

    /// Whether the buffer is attached and usable: not retired and its publisher alive.
    ///
    /// Called by the library right after createProcessDataFromJson and once more for each source
    /// when the system has started up; must not block.
    bool isBufferValid() const;

private:
    // Destroyed in reverse order: the tree goes last, after the attachment that it may share.
    QSharedPointer<ConfigurationAndProcessDataBase> rootElement;
    SharedMemory sharedMemory;
    QString bufferName;
    bool attached = false;
    mutable QMutex mutex;
};

#endif
