// SPDX-License-Identifier: MIT
// Watches selectors and prints what changes.
#ifndef WATCHER_H
#define WATCHER_H

#include "Console.h"
#include "Deadband.h"
#include "LiveLeaves.h"
#include "MaximumAge.h"
#include "SteadyTicks.h"
#include "UntilExpression.h"
#include "WatchLines.h"
#include "WatchTargets.h"
#include "WatchView.h"

#include <QObject>

#include <memory>
#include <optional>

/// What a person asks a watch for.
struct WatchOptions
{
    /// How it is shown.
    enum View {
        Lines, ///< a line for each change
        Plot,
        Table,
        Wide, ///< a row for each look
    };

    View view = Lines;
    int interval = 200; ///< milliseconds between two looks at the values
    int count = 0; ///< lines that end it; 0: no number does
    bool timestamps = false;
    bool changesOnly = false;
    MaximumAge maximumAge;
    Deadband deadband; ///< of lines
};

/// Reads all selectors regularly and prints those whose value, error type or reason differs from
/// the line before; prints both change signals of the library as they come. A view other than lines
/// shows all of them at each look, which counts as a line.
///
/// Threads: the main thread, with a running event loop.
class Watcher : public QObject
{
    Q_OBJECT

public:
    /// @param until  the condition that ends the watch; nothing: none does
    Watcher(const QVector<WatchTarget> &targets, const WatchOptions &options,
            const std::optional<UntilExpression> &until, const Console &console);

    /// The selectors whose leaf has no range, though the deadband is a share of it.
    QStringList withoutRange() const;

    /// What the latest lines of the selectors that have one mean for a script.
    ExitCode exitCode() const;

    /// Whether as many lines as wanted were printed; true when none were asked for.
    bool isComplete() const;

    /// Whether standard output took no more.
    bool resultsAreLost() const;

    /// Whether the condition held.
    bool isMet() const { return met; }

    int lineCount() const { return printed; }

    /// Has the selectors in the order of the targets.
    SelectorHandlerProcessValue &values() { return handler; }

    /// Gives the terminal back, if a view has it, and prints what was kept for the end.
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
        ReadResult latest;
        LeafValue told; ///< as its latest line has it
        QString toldReason; ///< likewise
        Finding miss; ///< why there is none
        Seen seen = Seen::Never;
        bool examine = true; ///< whether its finding may differ from before
        ExitCode failure = ExitAllGood; ///< what its latest line means for a script
    };

    void connectSignals();
    void look(qint64 time);
    Finding findingOf(Selector &selector, qint64 now, SelectorExaminer &examiner) const;
    bool isWorthTelling(const Selector &selector) const;
    void read(int index, const LeafValue &value, qint64 now, SelectorExaminer &examiner);
    void announce(const QString &signal, const QVector<int> &indices);
    void print(const QString &text);
    bool flush(); ///< ends the watch when it fails
    bool hasEnded() const;
    void countLine();
    void end();
    void checkCondition(qint64 now);
    void showView(qint64 time);

    SelectorHandlerProcessValue handler;
    QVector<Selector> selectors;
    const WatchOptions options;
    const WatchLines lines;
    const Console console;
    SteadyTicks ticks;
    const std::optional<UntilExpression> until;
    std::unique_ptr<WatchView> view; ///< null: lines are printed
    int printed = 0;
    bool met = false;
};

#endif
