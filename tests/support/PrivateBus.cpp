// SPDX-License-Identifier: MIT
// A message bus of a test's own.
#include "PrivateBus.h"
#include "Files.h"

PrivateBus::PrivateBus(Limits kind)
{
    if (kind == Limits::Wide) {
        limits = "<limit name=\"max_message_size\">134217728</limit>"
                 "<limit name=\"max_incoming_bytes\">1000000000</limit>"
                 "<limit name=\"max_outgoing_bytes\">1000000000</limit>";
    }
    configure({});
    qputenv("PROCESSDATA_BUS", address().toUtf8());
}

PrivateBus::~PrivateBus()
{
    stop();
}

bool PrivateBus::start()
{
    daemon.reset(new ChildProcess("dbus-daemon",
                                  {"--config-file=" + directory.filePath("bus.conf"), "--nofork",
                                   "--nopidfile", "--print-address=1"}));
    return daemon->start() && daemon->nextLine().startsWith("unix:");
}

bool PrivateBus::refuseCalls(const QStringList &interfaces)
{
    ChildProcess reload("dbus-send",
                        {"--bus=" + address(), "--print-reply", "--dest=org.freedesktop.DBus",
                         "/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig"});
    return configure(interfaces) && reload.start() && reload.waitForEnd() && reload.exitCode() == 0;
}

bool PrivateBus::configure(const QStringList &refusedInterfaces) const
{
    QByteArray refused;
    for (const QString &interface : refusedInterfaces) {
        refused += "<deny send_interface=\"" + interface.toUtf8() + "\"/>";
    }
    return writeFile(directory.filePath("bus.conf"),
                     "<busconfig><type>session</type><listen>" + address().toUtf8()
                         + "</listen><auth>EXTERNAL</auth>" + limits
                         + "<policy context=\"default\">"
                           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                           "<allow own=\"*\"/>"
                         + refused + "</policy></busconfig>\n");
}

void PrivateBus::stop()
{
    daemon.reset();
    QFile::remove(directory.filePath("bus")); // a killed daemon leaves its socket
}

void PrivateBus::setLimit(const QByteArray &name, int value)
{
    limits += "<limit name=\"" + name + "\">" + QByteArray::number(value) + "</limit>";
    configure({});
}

QString PrivateBus::address() const
{
    return "unix:path=" + directory.filePath("bus");
}

QByteArray PrivateBus::report() const
{
    return daemon ? daemon->report() : QByteArray("no bus daemon");
}
