// SPDX-License-Identifier: MIT
// What a scripted source remembers.
#ifndef SOURCESCRIPT_H
#define SOURCESCRIPT_H

#include "ScriptedSource.h"

#include <QMap>
#include <QPointer>
#include <QVector>

#include <atomic>

class DBusProcessDescriptionConnector;

/// Shared by all instances of one object of one module: they are reached over the same D-Bus
/// object.
struct ServiceScript
{
    bool connectorMissing = false;
    bool interfaceValid = true;
    // Reads of any thread compare these two.
    std::atomic<bool> gone{false};
    std::atomic<int> session{0}; // runs of the service before this one
    QVector<QPointer<DBusProcessDescriptionConnector>> connectors;
};

/// State of one source, shared by its handles and the trees built from it.
class SourceScript
{
public:
    SourceScript(const QString &moduleName, const QString &objectName, const QString &instance,
                 const QSharedPointer<ServiceScript> &service)
        : moduleName(moduleName)
        , objectName(objectName)
        , instance(instance)
        , service(service)
    {
    }

    static ScriptedSource handleOf(const QSharedPointer<SourceScript> &script)
    {
        return ScriptedSource(script);
    }
    static const QSharedPointer<SourceScript> &of(const ScriptedSource &source) { return source.d; }

    QString fetchProblem() const; // null when fetches work
    bool usable() const { return bufferValid && !service->gone; }
    /// Ends calls that clients began, from the given one on. Returns how many there were.
    int endRepliesFrom(int first);

    const QString moduleName;
    const QString objectName;
    const QString instance;
    const QSharedPointer<ServiceScript> service;
    QMap<QString, ScriptedLeaf> leaves; // by path
    QVariant description;
    QString fetchError;
    QVector<ScriptedReply> replies;
    bool fetchFails = false;
    bool bufferValid = true;
    bool hasRoot = true;
    bool placesCalls = true;
};

#endif
