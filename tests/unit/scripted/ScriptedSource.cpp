// SPDX-License-Identifier: MIT
// Changes a source's script and emits its announcements.
#include "ScriptedSource.h"

#include "DBusProcessDescriptionConnector.h"
#include "ScriptedPlatform.h"

ScriptedSource::ScriptedSource(const QString &moduleName, const QString &objectName,
                               const QString &instance,
                               const QSharedPointer<ScriptedService> &service)
    : moduleName(moduleName)
    , objectName(objectName)
    , instance(instance)
    , service(service)
{
}

ScriptedSource &ScriptedSource::leaf(const QString &name, const QVariant &value)
{
    leaves[name].holds(value);
    return *this;
}

ScriptedLeaf &ScriptedSource::at(const QString &name)
{
    const auto found = leaves.find(name);
    Q_ASSERT_X(found != leaves.end(), "ScriptedSource::at", "no such leaf in the script");
    return *found;
}

ScriptedSource &ScriptedSource::connectorMissing(bool on)
{
    service->connectorMissing = on;
    return *this;
}

ScriptedSource &ScriptedSource::interfaceInvalid(bool on)
{
    service->interfaceValid = !on;
    return *this;
}

ScriptedSource &ScriptedSource::fetchesFail(const QString &message)
{
    fetchFails = true;
    fetchError = message;
    return *this;
}

ScriptedSource &ScriptedSource::fetchesGive(const QVariant &newDescription)
{
    fetchFails = false;
    description = newDescription;
    if (newDescription.isValid()) {
        ScriptedPlatform::current()->describes(newDescription, this);
    }
    return *this;
}

ScriptedSource &ScriptedSource::bufferInvalid(bool on)
{
    bufferValid = !on;
    return *this;
}

ScriptedSource &ScriptedSource::rootMissing(bool on)
{
    hasRoot = !on;
    return *this;
}

ScriptedSource &ScriptedSource::asynchronousCallsMissing(bool on)
{
    placesCalls = !on;
    return *this;
}

void ScriptedSource::announceDescription(const QString &instanceName)
{
    const auto connectors = service->connectors; // slots may end connectors
    for (const auto &connector : connectors) {
        if (connector != nullptr) {
            Q_EMIT connector->processDataDescriptionChanged(instanceName);
        }
    }
}

void ScriptedSource::announceProperties(const QString &instanceName)
{
    const auto connectors = service->connectors;
    for (const auto &connector : connectors) {
        if (connector != nullptr) {
            Q_EMIT connector->propertyChanged(instanceName);
        }
    }
}

void ScriptedSource::changeDescription()
{
    announceDescription();
    Q_ASSERT_X(!replies.isEmpty(), "ScriptedSource", "nobody asked for the description");
    replies.last().finish(description);
}

void ScriptedSource::changeProperties()
{
    announceProperties();
    Q_ASSERT_X(!replies.isEmpty(), "ScriptedSource", "nobody asked for the description");
    replies.last().finish(description);
}

QString ScriptedSource::urlOf(const QString &leafName) const
{
    return QStringLiteral("scripted://%1/%2/%3/%4").arg(moduleName, objectName, instance, leafName);
}
