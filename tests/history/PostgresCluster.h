// SPDX-License-Identifier: MIT
// A PostgreSQL server of the test's own, in a folder, reached by a socket file alone.
#ifndef POSTGRESCLUSTER_H
#define POSTGRESCLUSTER_H

#include "ChildProcess.h"

#include <QTemporaryDir>

#include <memory>

/// The server refuses root, so under root it runs as nobody. It ends with the test.
class PostgresCluster
{
public:
    /// @returns an empty text, or what failed
    QString create();
    QString start();
    /// SIGKILL, to every process of the server.
    void kill();

    /// What histories take: of one database per name.
    QString database(const QString &name = QStringLiteral("postgres")) const;
    QString sql(const QString &statement, const QString &name = QStringLiteral("postgres")) const;

    /// A path that the server may write.
    QString file(const QString &name) const { return folder.filePath(name); }

private:
    QStringList asUser(const QStringList &command) const;
    QString program(const QString &name) const;

    QTemporaryDir folder;
    std::unique_ptr<ChildProcess> server;
};

#endif
