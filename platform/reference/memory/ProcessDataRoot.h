// SPDX-License-Identifier: MIT
// Root of a source's process-data tree: finds leaves by URL.
#ifndef PROCESSDATAROOT_H
#define PROCESSDATAROOT_H

#include "ConfigurationAndProcessDataBase.h"
#include "LeafBlock.h"

#include <QVector>

/// Holds every leaf that was looked up, so that a URL finds the same leaf for as long as the tree
/// lives.
class ProcessDataRoot final : public ConfigurationAndProcessDataBase
{
public:
    /// @param prepared  with its content
    /// @param memory    null for a tree whose leaves cannot be read
    ProcessDataRoot(PreparedDescriptionPointer prepared,
                    QSharedPointer<SharedMemoryPrivate> memory);

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;

private:
    int positionOfPlainUrl(const QString &url) const;
    ProcessDataValueSharedPointer leafAt(int position);

    const QSharedPointer<LeafBlock> block;
    QVector<ProcessDataValueSharedPointer>
        leaves; // in the description's order; null: never asked for
    QString beginOfUrls; // of URLs that are spelled without encoding
};

#endif
