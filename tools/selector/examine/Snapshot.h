// SPDX-License-Identifier: MIT
// Descriptions of sources in files.
#ifndef SNAPSHOT_H
#define SNAPSHOT_H

#include "DescriptionEdits.h"
#include "LeafCheck.h"
#include "SelectorPattern.h"

#include <QHash>
#include <QMap>

struct SnapshotSource
{
    QVector<DescribedLeaf> leaves; ///< properties without those of a run and of simulation
    QHash<QString, QJsonObject> byPath; ///< the same
};

/// Sources by their names.
class Snapshot
{
public:
    /// @param path   a description file, or a directory whose files with the extension of
    ///               descriptions are read
    /// @param error  receives one sentence that names the file
    static bool load(const QString &path, Snapshot &snapshot, QString &error);

    const QMap<SourceName, SnapshotSource> &sources() const { return all; }

    FoundLeaf find(const SelectorUrlParts &parts) const;

private:
    bool add(const QString &fileName, QString &error);

    QMap<SourceName, SnapshotSource> all;
};

/// A description as it is kept: without buffer, session and offsets, with each value as a
/// movement that stands still.
///
/// @param document  as a service sends it
/// @param values    by the leaves' paths; a leaf without one does not move and is never published
/// @param chosen    only the leaves that the path of any of them means, within their groups
QJsonObject snapshotOf(const QJsonObject &document, const QHash<QString, QJsonValue> &values,
                       const QVector<SelectorPattern> &chosen = {SelectorPattern()});

/// Name of the file of a source.
QString snapshotFileName(const SourceName &source);

#endif
