// SPDX-License-Identifier: MIT
// A publisher in a process of its own, driven line by line.
#ifndef PUBLISHERPROCESS_H
#define PUBLISHERPROCESS_H

#include "ChildProcess.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// Each command waits for the publisher's answer and runs the event loop meanwhile.
/// @returns  of each command: an empty text, or what went wrong with the program's errors
class PublisherProcess
{
public:
    /// @param prefix  a command that runs the one behind it
    explicit PublisherProcess(const QStringList &arguments = {}, const QStringList &prefix = {});

    QByteArray start();
    QByteArray create(const QString &module, const QString &object, const QString &instance,
                      const QJsonObject &description);
    /// Starts it and creates instance 1 of the module's object "Controller".
    QByteArray serve(const QString &module, const QJsonObject &description);
    QByteArray publish(const QString &path, const QJsonValue &value);
    QByteArray replaceDescription(const QJsonObject &description);
    QByteArray replaceProperties(const QJsonObject &description);
    QByteArray playStatusManager();
    QByteArray playRegistry();

    /// Takes "descriptors" or "memory" from it; "nothing" gives both back.
    QByteArray starve(const QString &what);
    QByteArray announceStartupReady();

    /// Waits until the publisher reports that a client wrote this leaf.
    /// @returns the value as compact JSON; null after the time limit
    QByteArray waitForWrite(const QString &path);

    /// Lets it retire its instances and end.
    bool quit() { return child.finish(); }

    ChildProcess &process() { return child; }

private:
    QByteArray command(const QJsonObject &command);

    ChildProcess child;
};

#endif
