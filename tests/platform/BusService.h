// SPDX-License-Identifier: MIT
// Runs a service in a process of its own, which does on the bus exactly what a test tells it.
#ifndef BUSSERVICE_H
#define BUSSERVICE_H

#include "DyingProcess.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <csignal>
#include <sys/types.h>

/// One helper process; killed, also when it is stopped, at the end of its scope. See
/// BusServiceHelper.cpp for the orders that it takes.
class BusService
{
public:
    BusService()
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(BUS_SERVICE_HELPER, QStringList());
    }
    ~BusService() { kill(); }
    BusService(const BusService &) = delete;
    BusService &operator=(const BusService &) = delete;

    /// Gives an order.
    /// @returns what the helper answers when it has carried it out; empty when it ended or 10 s
    /// went by
    QString order(const QStringList &words)
    {
        process.write(words.join('\t').toUtf8() + '\n');
        QElapsedTimer timer;
        timer.start();
        while (!process.canReadLine() && timer.elapsed() < 10000) {
            if (!process.waitForReadyRead(100) && process.state() == QProcess::NotRunning) {
                break;
            }
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    /// Serves an instance with a description under a module's name.
    bool serve(const QString &service, const QString &path, const QString &instance,
               const QString &text)
    {
        return order({"export", path}) == "ok" && order({"set", instance, text}) == "ok"
            && order({"own", service}) == "ok";
    }

    void announce(const QString &path, const QString &instance,
                  const QString &member = "ProcessDataDescriptionChanged")
    {
        order({"signal", path, "com.orvalis.ProcessDescription1", member, instance});
    }

    /// How often it was asked for a description.
    int fetches() { return order({"count"}).toInt(); }

    /// Stops it as a debugger would, and returns when the kernel has really stopped it.
    bool suspend()
    {
        ::kill(pid(), SIGSTOP);
        return QTest::qWaitFor([this] { return state() == 'T'; });
    }
    void resume() { ::kill(pid(), SIGCONT); }

    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

private:
    pid_t pid() const { return static_cast<pid_t>(process.processId()); }

    char state() const
    {
        QFile file(QString("/proc/%1/stat").arg(process.processId()));
        if (!file.open(QIODevice::ReadOnly)) {
            return '?';
        }
        const QByteArray text = file.readAll();
        return text.at(text.lastIndexOf(')') + 2);
    }

    DyingProcess process;
};

#endif
