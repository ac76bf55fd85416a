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

/// How deep groups may lie in one another.
constexpr int deepestDescriptionLevel = 64;

/// Leaves in document order; without those whose path is longer than any selector URL.
///
/// @param group  path of a group or a leaf; empty for all
QVector<DescribedLeaf> leavesBelow(const QJsonObject &document, const QString &group);

/// The path of an element of a group.
///
/// @param prefix  the group's path with "/" behind it; empty at the top
QString pathOfElement(const QJsonObject &element, const QString &prefix);

#endif
