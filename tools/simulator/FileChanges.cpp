// SPDX-License-Identifier: MIT
// Watches files together with their directories.
#include "FileChanges.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr int quietTime = 50; // milliseconds without a change before it is reported

} // namespace

FileChanges::FileChanges(const QStringList &fileNames, QObject *parent)
    : QObject(parent)
    , fileNames(fileNames)
{
    quiet.setSingleShot(true);
    quiet.setInterval(quietTime);
    connect(&watcher, &QFileSystemWatcher::fileChanged, &quiet, qOverload<>(&QTimer::start));
    connect(&watcher, &QFileSystemWatcher::directoryChanged, &quiet, qOverload<>(&QTimer::start));
    connect(&quiet, &QTimer::timeout, this, [this] {
        watch();
        Q_EMIT changed();
    });
    watch();
}

// A file that was replaced is no longer watched; its directory still is.
void FileChanges::watch()
{
    for (const QString &fileName : fileNames) {
        const QFileInfo info(fileName);
        if (info.exists() && !watcher.files().contains(fileName)) {
            watcher.addPath(fileName);
        }
        if (!watcher.directories().contains(info.absolutePath())) {
            watcher.addPath(info.absolutePath());
        }
    }
}
