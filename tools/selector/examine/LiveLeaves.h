// SPDX-License-Identifier: MIT
// Leaves of the running system by their position in a list.
#ifndef LIVELEAVES_H
#define LIVELEAVES_H

#include "LeafCheck.h"
#include "LeafValue.h"
#include "SelectorHandlerProcessValue.h"

/// The properties of the leaf at a position; empty without a leaf. Whole numbers that JSON would
/// round are strings of digits.
QJsonObject propertiesOf(SelectorHandlerProcessValue &handler, int position);

/// Whether there is a leaf at a position, by what the handler knows; asks nobody.
bool hasLeaf(SelectorHandlerProcessValue &handler, int position);

/// The values of a source's leaves, in their order.
QVector<LeafValue> valuesOf(const SourceName &source, const QVector<DescribedLeaf> &leaves);

/// Why a write of a good value was refused, as far as the libraries' warnings say since they were
/// taken last: nothing about the value is wrong, so the memory is.
Finding refusedByMemory();

/// Threads: one; blocks for D-Bus calls.
class LiveLeaves
{
public:
    explicit LiveLeaves(const QVector<ListLine> &lines);

    FoundLeaf find(int position);

    /// Writes a value that fits the leaf.
    Finding write(int position, const QVariant &value);

    SelectorHandlerProcessValue &handler() { return values; }

private:
    const QVector<QString> urls;
    SelectorHandlerProcessValue values;
    SelectorExaminer examiner;
};

#endif
