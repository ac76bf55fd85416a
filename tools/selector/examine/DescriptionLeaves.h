// SPDX-License-Identifier: MIT
// The leaves of a description as a service sends it.
#ifndef DESCRIPTIONLEAVES_H
#define DESCRIPTIONLEAVES_H

#include <QJsonObject>
#include <QString>
#include <QVector>

struct DescribedLeaf
{
    QString path;
    QJsonObject properties;
};

/// Leaves in document order.
///
/// @param group  path of a group or a leaf; empty for all
QVector<DescribedLeaf> leavesBelow(const QJsonObject &document, const QString &group);

#endif
