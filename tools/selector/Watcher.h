// SPDX-License-Identifier: MIT
// Watches selectors and prints what changes.
#ifndef WATCHER_H
#define WATCHER_H

#include "CommandLine.h"
#include "Console.h"
#include "SelectorHandlerProcessValue.h"
#include "WatchLines.h"

#include <QObject>
#include <QTimer>

/// Reads all selectors regularly and prints those whose value, error type or reason differs from
/// the line before; prints both change signals of the library as they come.
///
/// Threads: the main thread, with a running event loop.
class Watcher : public QObject
{
    Q_OBJECT

public:
    Watcher(const QVector<QString> &urls, const CommandLine &line, const Console &console);

    /// Whether the latest line of each selector was good.
    bool allGood() const;

    /// Whether as many lines as wanted were printed; true when none were asked for.
    bool isComplete() const;

    int lineCount() const { return printed; }

public Q_SLOTS:
    /// Prints the header and all selectors for the first time.
    void start();

Q_SIGNALS:
    void finished();

private:
    struct Selector
    {
        QString url;
        QJsonObject properties;
        QVariant value;
        ProcessDataDefinitions::ErrorTypes errorType = ProcessDataDefinitions::NoError;
        Finding finding;
        bool seen = false; ///< whether it was printed at least once
        bool examine = true; ///< whether its finding may be another one than before
        bool good = false;
    };

    void poll();
    void read(int index, const ProcessValue &value);
    void announce(const QString &signal, const QVector<int> &indices);
    void print(const QString &text);
    QJsonObject currentProperties(int index);

    SelectorHandlerProcessValue handler;
    QVector<Selector> selectors;
    const WatchLines lines;
    const Console console;
    QTimer timer;
    const int wantedLines;
    int printed = 0;
};

#endif
