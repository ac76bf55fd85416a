// SPDX-License-Identifier: MIT
// A service that does on the bus exactly what a test orders, in a process of its own.
#ifndef SCRIPTEDSERVICE_H
#define SCRIPTEDSERVICE_H

#include "ChildProcess.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// Stands in for the publisher of a module's object "Controller", once it is told to. Orders return
/// when the service has carried them out, and run no event loop meanwhile; BusServiceHelper.cpp
/// lists them all.
class ScriptedService
{
public:
    explicit ScriptedService(const QString &module = QStringLiteral("Pump"));

    /// Lets it own the module's name.
    bool comeUp();
    /// The same, with an instance that is described from the beginning.
    bool serve(const QString &instance, const QString &text);

    /// @returns its answer, mostly "ok"
    QByteArray order(const QStringList &words);

    /// Gives all orders before it waits for the first.
    /// @returns whether all were carried out
    bool orderAll(const QList<QStringList> &orders);

    /// What it answers to fetches of the instance from now on.
    bool describe(const QString &instance, const QByteArray &text);
    bool announce(const QString &instance,
                  const QString &member = QStringLiteral("ProcessDataDescriptionChanged"));

    /// The order that announces.
    static QStringList announcement(const QString &instance, const QString &member);

    /// How often it was asked for a description.
    int fetches();

    /// Announces without waiting for the end, instances 1 to @p instances in turn. No other order
    /// until stormTime() tells of the end.
    void beginStorm(int count, int instances);

    /// Milliseconds that the storm took; -1 while it goes on.
    int stormTime();

    ChildProcess &process() { return child; }

private:
    ChildProcess child;
    const QString service;
    int outputBeforeStorm = 0;
};

/// A description with a live buffer behind it, for a service that publishes nothing itself.
///
/// @param served    what the buffer's publisher serves
/// @param module    whose the description claims to be
/// @param instance  likewise
QJsonObject claimed(QJsonObject served, const QString &module, const QString &instance);

/// One line, as the service takes it.
QByteArray oneLine(const QJsonObject &document);

#endif
