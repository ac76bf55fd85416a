// SPDX-License-Identifier: MIT
// A message bus of a test's own.
#ifndef BUSDAEMON_H
#define BUSDAEMON_H

#include "DyingProcess.h"

#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// A bus daemon at an address that stays the same when it is stopped and started. While this object
/// lives, PROCESSDATA_BUS names it for this process and its children.
class BusDaemon
{
public:
    BusDaemon()
    {
        limitConnections(256);
        qputenv("PROCESSDATA_BUS", address().toUtf8());
        process.setProcessChannelMode(QProcess::SeparateChannels);
    }

    /// Lets each user have so many connections, once the daemon is started again.
    void limitConnections(int count)
    {
        QFile configuration(directory.filePath("bus.conf"));
        if (configuration.open(QIODevice::WriteOnly)) {
            configuration.write(
                "<busconfig><type>session</type><listen>" + address().toUtf8()
                + "</listen><auth>EXTERNAL</auth>"
                  "<limit name=\"max_connections_per_user\">"
                + QByteArray::number(count)
                + "</limit>"
                  "<limit name=\"max_message_size\">134217728</limit>"
                  "<limit name=\"max_incoming_bytes\">1000000000</limit>"
                  "<limit name=\"max_outgoing_bytes\">1000000000</limit><policy context=\"default\">"
                  "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                  "<allow own=\"*\"/></policy></busconfig>\n");
        }
    }

    ~BusDaemon()
    {
        stop();
        qunsetenv("PROCESSDATA_BUS");
    }
    BusDaemon(const BusDaemon &) = delete;
    BusDaemon &operator=(const BusDaemon &) = delete;

    /// Returns when the daemon accepts connections.
    bool start()
    {
        process.start("dbus-daemon",
                      {"--config-file=" + directory.filePath("bus.conf"), "--nofork", "--nopidfile",
                       "--print-address=1"});
        return process.waitForReadyRead() && process.readLine().startsWith("unix:");
    }

    /// Kills the daemon: its clients learn of it by the closed socket only.
    void stop()
    {
        process.kill();
        process.waitForFinished();
        QFile::remove(directory.filePath("bus"));
    }

    QString address() const { return "unix:path=" + directory.filePath("bus"); }
    qint64 pid() const { return process.processId(); }

private:
    QTemporaryDir directory;
    DyingProcess process;
};

#endif
