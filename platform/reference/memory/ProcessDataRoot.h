// SPDX-License-Identifier: MIT
// Root of a source's process-data tree: finds leaves by URL.
#ifndef PROCESSDATAROOT_H
#define PROCESSDATAROOT_H

#include "ConfigurationAndProcessDataBase.h"
#include "LeafBlock.h"

#include <QVector>

/// Holds every leaf of its description, so that a URL finds the same leaf for as long as the tree
/// lives.
class ProcessDataRoot final : public ConfigurationAndProcessDataBase
{
public:
    /// @param memory  null for a tree whose leaves cannot be read
    ProcessDataRoot(ProcessDataDescription description, QSharedPointer<SharedMemoryPrivate> memory);

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;

private:
    int positionOfPlainUrl(const QString &url) const;

    const QSharedPointer<LeafBlock> block;
    QVector<ProcessDataValueSharedPointer> leaves; // in the description's order
    QString beginOfUrls; // of URLs that are spelled without encoding
};

#endif
