// SPDX-License-Identifier: MIT
// What a scripted leaf answers.
#ifndef SCRIPTEDLEAF_H
#define SCRIPTEDLEAF_H

#include "ProcessDataDefinitions.h"
#include "ProcessValue.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <QVector>

/// The script of one leaf.
///
/// Value and reactions are looked up at each call. Properties and JSON text are copied into the
/// leaf when a tree is built: a change of theirs shows only in leaves of later trees.
class ScriptedLeaf
{
public:
    ScriptedLeaf &holds(const QVariant &newValue,
                        ProcessDataDefinitions::ErrorTypes newErrorType
                        = ProcessDataDefinitions::NoError)
    {
        value = newValue;
        errorType = newErrorType;
        return *this;
    }
    ScriptedLeaf &property(const QString &name, const QVariant &newValue)
    {
        properties.insert(name, newValue);
        return *this;
    }
    ScriptedLeaf &readOnly(bool on = true) { return property(QStringLiteral("is-read-only"), on); }
    /// Bytes that the parser appends for this leaf, in place of its name and properties.
    ScriptedLeaf &rendersAs(const QByteArray &bytes)
    {
        rendering = bytes;
        scriptedRendering = true;
        return *this;
    }
    ScriptedLeaf &refusesWrites(bool on = true)
    {
        writesRefused = on;
        return *this;
    }
    ScriptedLeaf &leavesValuesUntouched(bool on = true)
    {
        untouched = on;
        return *this;
    }
    /// Later trees have no such leaf, or have it again.
    ScriptedLeaf &absent(bool on = true)
    {
        missing = on;
        return *this;
    }
    /// Whatever readLeafProperty gives for a name that the leaf lacks.
    ScriptedLeaf &answersUnknownPropertiesWith(const QVariant &answer)
    {
        unknownProperty = answer;
        return *this;
    }

    QVariant value;
    ProcessDataDefinitions::ErrorTypes errorType = ProcessDataDefinitions::NoError;
    QVariantMap properties;
    QVariant unknownProperty;
    QByteArray rendering;
    QVector<ProcessValue> written;
    bool scriptedRendering = false;
    bool writesRefused = false;
    bool untouched = false;
    bool missing = false;
};

#endif
