// SPDX-License-Identifier: MIT
// Descriptions with each number as it was sent, and changed.
#ifndef DESCRIPTIONEDITS_H
#define DESCRIPTIONEDITS_H

#include "DescriptionLeaves.h"

#include <functional>

/// The leaves of a description's text; whole numbers that JSON would round are strings of digits.
QVector<DescribedLeaf> leavesBelow(const QString &description, const QString &group);

/// Changes an element, a group or a leaf, of the path that it gets.
///
/// @returns whether it is kept
using ElementChange = std::function<bool(const QString &path, QJsonObject &element)>;

/// A description with all its elements changed, groups before what is in them.
QJsonObject withElements(const QJsonObject &document, const ElementChange &change);

#endif
