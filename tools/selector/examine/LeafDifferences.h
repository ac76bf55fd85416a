// SPDX-License-Identifier: MIT
// Compares what two descriptions say of a leaf.
#ifndef LEAFDIFFERENCES_H
#define LEAFDIFFERENCES_H

#include <QJsonObject>
#include <QString>
#include <QVector>

struct LeafDifference
{
    QString what; ///< "leaf" (there or not) or the name of a property
    QString before;
    QString after;
    bool breaks = false; ///< whether clients of the leaf before may fail or go wrong
};

/// What clients notice breaks: the leaf is gone, has another type or unit, became read-only, or
/// takes less than before (a higher minimum, a lower maximum or capacity). Whatever else is
/// different does not.
///
/// @param before  properties of the leaf; empty: none
QVector<LeafDifference> leafDifferences(const QJsonObject &before, const QJsonObject &after);

#endif
