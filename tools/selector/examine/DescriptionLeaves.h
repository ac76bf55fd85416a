// SPDX-License-Identifier: MIT
// The leaves of a description as a service sends it.
#ifndef DESCRIPTIONLEAVES_H
#define DESCRIPTIONLEAVES_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <functional>

struct DescribedLeaf
{
    QString path;
    QJsonObject properties;
};

/// Leaves in document order.
///
/// @param group  path of a group or a leaf; empty for all
QVector<DescribedLeaf> leavesBelow(const QJsonObject &document, const QString &group);

/// The same of a description's text; whole numbers that JSON would round are strings of digits.
QVector<DescribedLeaf> leavesBelow(const QString &description, const QString &group);

/// Changes an element, a group or a leaf, of the path that it gets.
///
/// @returns whether it is kept
using ElementChange = std::function<bool(const QString &path, QJsonObject &element)>;

/// A description with all its elements changed, groups before what is in them.
QJsonObject withElements(const QJsonObject &document, const ElementChange &change);

#endif
