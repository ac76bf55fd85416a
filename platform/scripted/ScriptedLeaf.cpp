// SPDX-License-Identifier: MIT
// Changes the script of a leaf.
#include "ScriptedLeaf.h"

#include "LeafScript.h"
#include "Script.h"

#include <QMutexLocker>

ScriptedLeaf::ScriptedLeaf()
    : d(QSharedPointer<LeafScript>::create())
{
}

ScriptedLeaf &ScriptedLeaf::holds(const QVariant &value,
                                  ProcessDataDefinitions::ErrorTypes errorType, qint64 timestamp)
{
    const QMutexLocker lock(&d->mutex);
    d->current.set(value, errorType, timestamp);
    return *this;
}

ScriptedLeaf &ScriptedLeaf::refusesReads(bool on)
{
    const QMutexLocker lock(&d->mutex);
    d->readsRefused = on;
    return *this;
}

ScriptedLeaf &ScriptedLeaf::refusesWrites(bool on)
{
    const QMutexLocker lock(&d->mutex);
    d->writesRefused = on;
    return *this;
}

ScriptedLeaf &ScriptedLeaf::property(const QString &name, const QVariant &value)
{
    const QMutexLocker lock(&d->mutex);
    d->described.properties.insert(name, value);
    return *this;
}

ScriptedLeaf &ScriptedLeaf::readOnly(bool on)
{
    return property(Script::names().readOnlyProperty, on);
}

ScriptedLeaf &ScriptedLeaf::absent(bool on)
{
    const QMutexLocker lock(&d->mutex);
    d->described.missing = on;
    return *this;
}

ScriptedLeaf &ScriptedLeaf::rendersAs(const QByteArray &bytes)
{
    const QMutexLocker lock(&d->mutex);
    d->described.rendering = bytes;
    d->described.scriptedRendering = true;
    return *this;
}

ScriptedLeaf &ScriptedLeaf::answersUnknownPropertiesWith(const QVariant &answer)
{
    const QMutexLocker lock(&d->mutex);
    d->described.unknownProperty = answer;
    return *this;
}

ProcessValue ScriptedLeaf::value() const
{
    const QMutexLocker lock(&d->mutex);
    return d->current;
}

QVector<ProcessValue> ScriptedLeaf::written() const
{
    const QMutexLocker lock(&d->mutex);
    return d->written;
}
