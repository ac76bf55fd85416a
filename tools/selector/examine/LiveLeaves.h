// SPDX-License-Identifier: MIT
// Leaves of the running system by their position in a list.
#ifndef LIVELEAVES_H
#define LIVELEAVES_H

#include "Diagnosis.h"
#include "LeafCheck.h"
#include "SelectorHandlerProcessValue.h"

/// Threads: one; blocks for D-Bus calls.
class LiveLeaves
{
public:
    explicit LiveLeaves(const QVector<ListLine> &lines);

    FoundLeaf find(int position, const QString &url);

    SelectorHandlerProcessValue &handler() { return values; }

private:
    SelectorHandlerProcessValue values;
    Diagnosis diagnosis;
};

#endif
