// SPDX-License-Identifier: MIT
// What one scripted source of process data answers.
#ifndef SCRIPTEDSOURCE_H
#define SCRIPTEDSOURCE_H

#include "ScriptedLeaf.h"
#include "ScriptedReply.h"

#include <QMap>
#include <QPointer>
#include <QSharedPointer>
#include <QString>
#include <QVariant>
#include <QVector>

class DBusProcessDescriptionConnector;

/// Shared by all instances of one object of one module: they are reached over the same D-Bus
/// object.
struct ScriptedService
{
    bool connectorMissing = false;
    bool interfaceValid = true;
    QVector<QPointer<DBusProcessDescriptionConnector>> connectors;
};

/// The script of one instance: everything works unless told otherwise.
class PROCESSDATAPLATFORM_EXPORT ScriptedSource
{
public:
    ScriptedSource(const QString &moduleName, const QString &objectName, const QString &instance,
                   const QSharedPointer<ScriptedService> &service);

    /// Adds a leaf, or gives it another value.
    ScriptedSource &leaf(const QString &name, const QVariant &value = {});
    /// The script of a leaf that was added.
    ScriptedLeaf &at(const QString &name);

    ScriptedSource &connectorMissing(bool on = true);
    ScriptedSource &interfaceInvalid(bool on = true);
    /// Fetches fail with this text until fetchesGive is called.
    ScriptedSource &fetchesFail(const QString &message);
    /// Fetches give this description from now on; trees built from it are this source's.
    ScriptedSource &fetchesGive(const QVariant &newDescription);
    ScriptedSource &bufferInvalid(bool on = true);
    ScriptedSource &rootMissing(bool on = true);
    ScriptedSource &asynchronousCallsMissing(bool on = true);

    /// Emits the signal of every living connector of the source's object, in the calling thread.
    void announceDescription() { announceDescription(instance); }
    void announceDescription(const QString &instanceName);
    void announceProperties() { announceProperties(instance); }
    void announceProperties(const QString &instanceName);

    /// The n-th asynchronous call for this instance, from 0; a dead handle when there was none.
    ScriptedReply reply(int position) const { return replies.value(position); }
    int replyCount() const { return replies.size(); }
    /// Announces, then ends the asynchronous call that this sets off.
    void changeDescription();
    void changeProperties();

    QString urlOf(const QString &leafName) const;

    const QString moduleName;
    const QString objectName;
    const QString instance;
    const QSharedPointer<ScriptedService> service;
    QMap<QString, ScriptedLeaf> leaves;
    QVariant description;
    QString fetchError;
    QVector<ScriptedReply> replies;
    bool fetchFails = false;
    bool bufferValid = true;
    bool hasRoot = true;
    bool placesCalls = true;
};

#endif
