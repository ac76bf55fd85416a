// SPDX-License-Identifier: MIT
// A simulator that a test drives over its control interface.
#include "SimulatorProcess.h"
#include "Files.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

namespace {

const int callTimeLimit = 60000; // milliseconds

QString freshConnectionName()
{
    static int counter = 0;
    return QString("simulator-%1").arg(++counter);
}

} // namespace

SimulatorProcess::SimulatorProcess(const QString &busAddress)
    : connectionName(freshConnectionName())
    , connection(QDBusConnection::connectToBus(busAddress, connectionName))
{
}

SimulatorProcess::~SimulatorProcess()
{
    QDBusConnection::disconnectFromBus(connectionName);
}

QByteArray SimulatorProcess::publish(const QString &module, const QJsonObject &description,
                                     const QString &object)
{
    QJsonObject document = description;
    document.insert("module", module);
    document.insert("object", object);
    document.insert("instance", "1");
    files.append(directory.filePath(module + ".pdd"));
    return writeFile(files.last(), QJsonDocument(document).toJson()) ? QByteArray()
                                                                     : "no description file";
}

QByteArray SimulatorProcess::start(const QStringList &options)
{
    child.reset(new ChildProcess(SIMULATOR, options + QStringList{"--interval", "20"} + files));
    return child->start() && !child->waitForLineWith("ready").isNull() ? QByteArray()
                                                                       : child->report();
}

QByteArray SimulatorProcess::startScenario(const QString &content)
{
    const QString name = directory.filePath("scenario.json");
    return writeFile(name, content.toUtf8()) ? start({"--scenario", name}) : "no scenario file";
}

bool SimulatorProcess::waitForError(const QByteArray &text)
{
    return QTest::qWaitFor([&] { return child->errors().contains(text); }, 20000);
}

QDBusMessage SimulatorProcess::send(const QString &method, const QVariant &argument)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        "com.orvalis.ProcessDataSimulator", "/com/orvalis/ProcessDataSimulator",
        "com.orvalis.ProcessDataSimulator1", method);
    if (argument.isValid()) {
        message << argument;
    }
    return connection.call(message, QDBus::Block, callTimeLimit);
}

QByteArray SimulatorProcess::call(const QString &method, const QVariant &argument)
{
    const QDBusMessage reply = send(method, argument);
    return reply.type() == QDBusMessage::ReplyMessage
        ? QByteArray()
        : (reply.errorName() + ": " + reply.errorMessage()).toUtf8();
}

QVariantList SimulatorProcess::ask(const QString &method, const QVariant &argument)
{
    return send(method, argument).arguments();
}

QDBusPendingCall SimulatorProcess::fetch(const QString &module)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        "com.orvalis.ProcessData." + module, "/com/orvalis/ProcessData/Controller",
        "com.orvalis.ProcessDescription1", "GetProcessDataDescription");
    message << QString("1") << QString();
    return connection.asyncCall(message, callTimeLimit);
}

bool SimulatorProcess::watch(const QString &module, const QString &signal, QObject *receiver,
                             const char *slot)
{
    return connection.connect("com.orvalis.ProcessData." + module,
                              "/com/orvalis/ProcessData/Controller",
                              "com.orvalis.ProcessDescription1", signal, receiver, slot);
}
