// SPDX-License-Identifier: MIT
// Says of each line of a selector list what would break.
#ifndef LEAFCHECK_H
#define LEAFCHECK_H

#include "Examination.h"
#include "ListFile.h"

#include <QJsonObject>
#include <QVariant>

#include <functional>

/// A leaf as a check sees it.
struct FoundLeaf
{
    Finding finding; ///< why there is none
    QJsonObject properties; ///< what its description says
};

/// Finds the leaf of the line at a position of the list. Asked only for URLs whose text is right.
using LeafLookup = std::function<FoundLeaf(int position, const SelectorUrlParts &parts)>;

struct CheckedLine
{
    ListLine line;
    Finding finding; ///< the first thing that is wrong
    QJsonObject properties;
    QVariant value; ///< of the leaf's type, of a line with one
};

/// Whether a text can be written to a leaf.
///
/// @param value  receives it in the leaf's type
Finding checkValue(const QJsonObject &properties, const QString &text, QVariant &value);

/// In the order of the list: text, leaf, access and value, and whether an earlier line names the
/// same leaf.
QVector<CheckedLine> checkLines(const QVector<ListLine> &lines, const LeafLookup &lookup);

#endif
