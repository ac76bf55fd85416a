// SPDX-License-Identifier: MIT
// What a scripted leaf remembers.
#ifndef LEAFSCRIPT_H
#define LEAFSCRIPT_H

#include "ScriptedLeaf.h"

#include <QMutex>
#include <QVariantMap>

/// The part of a leaf that a description gives: copied into the leaf when a tree is built.
struct LeafDescriptionScript
{
    QVariantMap properties;
    QVariant unknownProperty;
    QByteArray rendering;
    bool scriptedRendering = false;
    bool missing = false;
};

/// State of one leaf, shared by its handles and the leaves of all trees.
class LeafScript
{
public:
    static const QSharedPointer<LeafScript> &of(const ScriptedLeaf &leaf) { return leaf.d; }

    mutable QMutex mutex; // guards all below: clients read and write in their own threads
    ProcessValue current = ProcessValue(QVariant());
    QVector<ProcessValue> written;
    LeafDescriptionScript described;
    bool readsRefused = false;
    bool writesRefused = false;
};

#endif
