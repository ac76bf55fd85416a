// SPDX-License-Identifier: MIT
// A simulator that a test drives over its control interface.
#ifndef SIMULATORPROCESS_H
#define SIMULATORPROCESS_H

#include "ChildProcess.h"

#include <QDBusConnection>
#include <QJsonObject>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QVariant>

class QDBusMessage;
class QDBusPendingCall;

/// Operations that return a text return an empty one when all went well, else what did not.
class SimulatorProcess
{
public:
    explicit SimulatorProcess(const QString &busAddress);
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess &) = delete;
    SimulatorProcess &operator=(const SimulatorProcess &) = delete;

    /// Writes a file for module/object/1, published by the next start.
    QByteArray publish(const QString &module, const QJsonObject &description,
                       const QString &object = "Controller");
    /// Returns when everything is published.
    QByteArray start(const QStringList &options);
    QByteArray startScenario(const QString &content);
    ChildProcess &process() { return *child; }
    /// Whether the text comes on its standard error.
    bool waitForError(const QByteArray &text);

    /// Calls the control interface; returns when the reply is there.
    QByteArray call(const QString &method, const QVariant &argument = {});
    QVariantList ask(const QString &method, const QVariant &argument = {});

    /// Asks the module's service for its description.
    QDBusPendingCall fetch(const QString &module);
    /// Has a slot called for each signal of the module's service.
    bool watch(const QString &module, const QString &signal, QObject *receiver, const char *slot);

private:
    QDBusMessage send(const QString &method, const QVariant &argument);

    const QString connectionName;
    QDBusConnection connection;
    QTemporaryDir directory;
    QStringList files;
    QScopedPointer<ChildProcess> child;
};

#endif
