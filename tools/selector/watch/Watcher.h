// SPDX-License-Identifier: MIT
// Watches selectors and prints what changes.
#ifndef WATCHER_H
#define WATCHER_H

#include "Console.h"
#include "LiveLeaves.h"
#include "PlotScreen.h"
#include "UntilExpression.h"
#include "WatchLines.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

/// What a person asks a watch for.
struct WatchOptions
{
    int interval = 200; ///< milliseconds between two looks at the values
    int count = 0; ///< lines that end it; 0: no number does
    bool timestamps = false;
    bool changesOnly = false;
    bool plot = false;
};

/// Reads all selectors regularly and prints those whose value, error type or reason differs from
/// the line before; prints both change signals of the library as they come. With --plot draws
/// charts instead of lines, and each look counts as a line.
///
/// Threads: the main thread, with a running event loop.
class Watcher : public QObject
{
    Q_OBJECT

public:
    /// @param until  the condition that ends the watch; nothing: none does
    Watcher(const QVector<WatchTarget> &targets, const WatchOptions &options,
            const std::optional<UntilExpression> &until, const Console &console);

    /// What the latest lines of the selectors that have one mean for a script.
    ExitCode exitCode() const;

    /// Whether as many lines as wanted were printed; true when none were asked for.
    bool isComplete() const;

    /// Whether standard output took no more.
    bool resultsAreLost() const;

    /// Whether the condition held.
    bool isMet() const { return met; }

    int lineCount() const { return printed; }

    /// Prints what was kept for the end.
    void finish();

    /// Prints the header and all selectors for the first time.
    void start();

Q_SIGNALS:
    void finished();

private:
    /// What was printed of a selector.
    enum class Seen { Never, Unchanged, Changed };

    struct Selector
    {
        QString url;
        QString label;
        QJsonObject properties;
        LeafValue value;
        Finding finding;
        Seen seen = Seen::Never;
        bool examine = true; ///< whether its finding may differ from before
        ExitCode failure = ExitAllGood; ///< what its latest line means for a script
        QString reason; ///< why it is not good
    };

    void poll();
    void read(int index, const LeafValue &value, SelectorExaminer &examiner);
    void announce(const QString &signal, const QVector<int> &indices);
    void print(const QString &text);
    bool flush(); ///< ends the watch when it fails
    bool hasEnded() const;
    void countLine();
    void checkCondition();
    void plot();

    SelectorHandlerProcessValue handler;
    QVector<Selector> selectors;
    const WatchLines lines;
    const Console console;
    QTimer timer;
    const std::optional<UntilExpression> until;
    std::unique_ptr<PlotScreen> screen; ///< null: lines are printed
    const bool changesOnly;
    const int wantedLines;
    int printed = 0;
    bool met = false;
};

#endif
