// SPDX-License-Identifier: MIT
// Tells when one of several files may have changed, also when an editor replaces it.
#ifndef FILECHANGES_H
#define FILECHANGES_H

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

/// Several changes in quick succession, as editors make them, are reported once.
class FileChanges : public QObject
{
    Q_OBJECT

public:
    explicit FileChanges(const QStringList &fileNames, QObject *parent = nullptr);

Q_SIGNALS:
    /// At least one file or its directory changed; the content may be the same.
    void changed();

private:
    void watch();

    const QStringList fileNames;
    QFileSystemWatcher watcher;
    QTimer quiet;
};

#endif
