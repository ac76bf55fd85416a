// SPDX-License-Identifier: MIT
// A PostgreSQL server of the test's own, in a folder, reached by a socket file alone.
#include "PostgresCluster.h"
#include "Files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <csignal>
#include <unistd.h>

namespace {

constexpr int limit = 60000;

// Standard output, or the reason in brackets.
QString outputOf(const QStringList &command)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(limit) || process.exitCode() != 0) {
        return QStringLiteral("[%1: %2 %3]")
            .arg(command.join(QLatin1Char(' ')), process.errorString(),
                 QString::fromLocal8Bit(process.readAll()));
    }
    return QString::fromUtf8(process.readAll()).trimmed();
}

} // namespace

QString PostgresCluster::program(const QString &name) const
{
    const QDir versions(QStringLiteral("/usr/lib/postgresql"));
    const QStringList found = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    return found.isEmpty() ? name
                           : versions.filePath(found.last() + QStringLiteral("/bin/") + name);
}

QStringList PostgresCluster::asUser(const QStringList &command) const
{
    return ::geteuid() != 0
        ? command
        : QStringList{QStringLiteral("setpriv"), QStringLiteral("--reuid=nobody"),
                      QStringLiteral("--regid=nogroup"), QStringLiteral("--clear-groups"),
                      QStringLiteral("--pdeathsig=KILL")}
            + command;
}

QString PostgresCluster::create()
{
    if (::geteuid() == 0) {
        const QString owned
            = outputOf({QStringLiteral("chown"), QStringLiteral("nobody:nogroup"), folder.path()});
        if (!owned.isEmpty()) {
            return owned;
        }
    }
    const QString made
        = outputOf(asUser({program(QStringLiteral("initdb")), QStringLiteral("--auth=trust"),
                           QStringLiteral("--username=recorder"), QStringLiteral("--no-sync"),
                           QStringLiteral("--encoding=UTF8"), QStringLiteral("--locale=C"),
                           QStringLiteral("-D"), folder.filePath(QStringLiteral("data"))}));
    return made.startsWith(QLatin1Char('[')) ? made : start();
}

QString PostgresCluster::start()
{
    // Its messages into a file: a pipe that nobody reads for a while stops the server.
    const QString log = folder.filePath(QStringLiteral("log"));
    const QStringList command = asUser(
        {QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("exec \"$@\" >> \"$0\" 2>&1"),
         log, program(QStringLiteral("postgres")), QStringLiteral("-D"),
         folder.filePath(QStringLiteral("data")), QStringLiteral("-k"), folder.path(),
         QStringLiteral("-c"), QStringLiteral("listen_addresses=")});
    server = std::make_unique<ChildProcess>(command.first(), command.mid(1));
    if (!server->start()) {
        return QString::fromUtf8(server->report());
    }
    QElapsedTimer waited;
    waited.start();
    while (sql(QStringLiteral("SELECT 1")) != QLatin1String("1")) {
        if (!server->isRunning()) { // what a killed server left may still be ending
            server->start();
        }
        if (waited.hasExpired(limit)) {
            return QStringLiteral("the server did not come up: ")
                + QString::fromUtf8(contentOf(log).right(2000));
        }
        QThread::msleep(20);
    }
    return {};
}

void PostgresCluster::kill()
{
    const QList<QByteArray> children
        = contentOf(QStringLiteral("/proc/%1/task/%1/children").arg(server->pid()))
              .simplified()
              .split(' ');
    server->kill();
    for (const QByteArray &child : children) {
        if (child.toInt() > 1) {
            ::kill(child.toInt(), SIGKILL);
        }
    }
    server.reset();
}

QString PostgresCluster::database(const QString &name) const
{
    return QStringLiteral("postgresql://recorder@localhost/%1?host=%2").arg(name, folder.path());
}

QString PostgresCluster::sql(const QString &statement, const QString &name) const
{
    return outputOf({program(QStringLiteral("psql")), QStringLiteral("-h"), folder.path(),
                     QStringLiteral("-U"), QStringLiteral("recorder"), QStringLiteral("-d"), name,
                     QStringLiteral("-XAtqc"), statement});
}
