// SPDX-License-Identifier: MIT
// selector watch: values and announcements as they come.
#include "Command.h"
#include "Counted.h"
#include "ExitCode.h"
#include "Selection.h"
#include "SelectorList.h"
#include "SystemStatusManagerDBusConnector.h"
#include "UnixSignals.h"
#include "UntilExpression.h"
#include "WatchChoices.h"
#include "Watcher.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <csignal>
#include <memory>

namespace {

constexpr Option tableOption{
    "--table",
    "keep one row a selector in place; q quits, / filters the rows;\n"
    "without a terminal one table at the end",
    "What has changed stands out for a second. Behind / type a part of the names that are wanted; "
    "Enter keeps the filter, Esc clears it. Rows that do not fit are counted in the last line. "
    "Each look at the values counts as a line. Ctrl-Z gives the terminal back until the job goes "
    "on."};

constexpr Option plotOption{
    "--plot",
    "draw a moving line chart of each selector instead of lines; q quits;\n"
    "without a terminal one chart at the end",
    "Charts are scaled to what they show; each look at the values is one step and counts "
    "as a line. Below them stands how long ago each step was. Times without a good number are "
    "gaps. Braille patterns draw eight dots a "
    "character where the terminal is one of UTF-8 and not the kernel's own console, * "
    "elsewhere. A terminal that cannot move its cursor has one chart at the end, too. "
    "Charts are called by the last part of their URL, and by more of it where several end "
    "alike. Those that do not fit on the terminal are counted in its last line."};

constexpr Option wideOption{
    "--wide",
    "print one row an instant with one column a selector, good values\n"
    "alone; each row counts as a line",
    "The columns of CSV are time and the selectors, by label or URL. JSON has the array values, "
    "with null for what is not good, and errorTypes beside it. The time is that of the tick: "
    "ticks do not drift, and one that comes too late, because a service hangs, is left out."};

constexpr Option everyOption{"--every MS", "with --wide, milliseconds between two rows (1000)",
                             "1 to 3600000; or with a unit, as in 1s.", Option::Milliseconds};

constexpr Option deadbandOption{
    "--deadband D",
    "leave out changes of D or less, in the value's unit; D% is a share\n"
    "of the leaf's minimum to maximum",
    "A number is compared with the one of the line before, so that a slow drift shows. A change "
    "of error type always shows, as does any change of what is not a number. A leaf without "
    "minimum and maximum has no share."};

enum class End {
    Finished, // as many lines as wanted, or the condition
    TimeLimit,
    Interrupted,
    Terminated,
};

int verdict(End end, const Watcher &watcher, const CommandLine &line, const Console &console)
{
    if (watcher.isMet()) {
        return ExitAllGood;
    }
    if (watcher.resultsAreLost()) {
        return ExitSomeFailed;
    }
    if (end == End::Interrupted) {
        return ExitInterrupted;
    }
    const bool tooEarly = end == End::TimeLimit && !watcher.isComplete();
    if (line.has("until") || tooEarly) {
        const QString what
            = end == End::TimeLimit ? QStringLiteral("time is up") : QStringLiteral("ended");
        const int wanted = line.number("count");
        const QString lines = wanted == 0 ? counted(watcher.lineCount(), "line", "lines")
                                          : QStringLiteral("%1 of %2")
                                                .arg(watcher.lineCount())
                                                .arg(counted(wanted, "line", "lines"));
        const QString condition
            = line.has("until") ? QStringLiteral("; never true: ") + line.text("until") : QString();
        console.err << printable(
            QStringLiteral("selector: %1 after %2%3").arg(what, lines, condition))
                    << '\n';
        console.err.flush();
        return end == End::TimeLimit ? ExitTimeLimit : ExitSomeFailed;
    }
    return watcher.exitCode();
}

bool parseUntil(const CommandLine &line, const QVector<WatchTarget> &targets,
                std::optional<UntilExpression> &until, QString &problem)
{
    if (line.has("until")) {
        until.emplace();
        return UntilExpression::parse(line.text("until"), targets, *until, problem);
    }
    return true;
}

QVector<WatchTarget> targetsOf(const Selection &selection)
{
    QVector<WatchTarget> targets = watchTargets(selection.lines());
    for (int i = 0; i < targets.size(); ++i) {
        targets[i].miss = selection.finding(i);
    }
    return targets;
}

// Null with a condition that does not fit the selectors.
std::unique_ptr<Watcher> makeWatcher(const CommandLine &line, const QVector<ListLine> &typed,
                                     const WatchOptions &options, const Console &console,
                                     QString &problem)
{
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    std::optional<UntilExpression> until;
    bool parsed = parseUntil(line, targetsOf(selection), until, problem);
    auto watcher = std::make_unique<Watcher>(targetsOf(selection), options, until, console);
    if (selection.expandGroups([&watcher](int i) { return hasLeaf(watcher->values(), i); })) {
        parsed = parseUntil(line, targetsOf(selection), until, problem);
        watcher.reset(); // it has the terminal
        watcher = std::make_unique<Watcher>(targetsOf(selection), options, until, console);
    }
    if (!parsed) {
        watcher.reset();
    }
    return watcher;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> selectors;
    WatchOptions options;
    if (!collectSelectors(line, LineForm::Url, selectors, usage)
        || !takeWatchOptions(line, options, usage)) {
        return ExitUsage;
    }
    QElapsedTimer clock;
    clock.start();
    // A condition may speak of leaves that only a running system has; what needs none is wrong
    // without one, too.
    std::optional<UntilExpression> until;
    if (SystemStatusManagerDBusConnector::createAndConnect().isNull()
        && !parseUntil(line, watchTargets(selectors), until, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    Console output = console;
    // No cell of a row says why it is empty.
    output.silentReasons = output.silentReasons && options.view != WatchOptions::Wide;
    // Until it is made, signals end the process.
    const std::unique_ptr<Watcher> watcher = makeWatcher(line, selectors, options, output, usage);
    if (!watcher) {
        return ExitUsage;
    }
    const QStringList withoutRange = watcher->withoutRange();
    if (!withoutRange.isEmpty()) {
        usage = QStringLiteral("--deadband %1 is a share of the range, and %2 has no minimum and "
                               "maximum; give a number instead")
                    .arg(line.text("deadband"), withoutRange.constFirst());
        return ExitUsage;
    }
    const UnixSignals signalsOfSystem;
    QTimer limit;
    limit.setSingleShot(true);
    End end = End::Finished;
    QObject::connect(&limit, &QTimer::timeout, qApp, [&end] {
        end = End::TimeLimit;
        QCoreApplication::quit();
    });
    QObject::connect(&signalsOfSystem, &UnixSignals::received, qApp, [&end](int number) {
        end = number == SIGINT ? End::Interrupted : End::Terminated;
        QCoreApplication::quit();
    });
    QObject::connect(watcher.get(), &Watcher::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    watcher->start();
    if (line.has("timeout")) {
        limit.start(std::max(0, line.number("timeout") - static_cast<int>(clock.elapsed())));
    }
    QCoreApplication::exec();
    watcher->finish();
    return verdict(end, *watcher, line, console);
}

} // namespace

Command watchCommand()
{
    return {
        QStringLiteral("watch"),
        QStringLiteral("print values and announcements as they change"),
        "Usage: selector watch [OPTIONS] [NAME=]SELECTOR...\n"
        "Prints each selector once and then each value that changes, and the index lists of\n"
        "announced changes, each with what happened. Selectors whose service is not there yet\n"
        "follow when it comes up. Ends on SIGINT and SIGTERM.\n",
        {{"--until EXPR",
          "end when EXPR holds: speed>1000, running==true, changed(speed),\n"
          "age(speed)>5s, 'state==\"ready\" && !(#1<5 || #2>=7)'; a selector is\n"
          "called by the last part of its URL, by NAME=, or by #POSITION (0 is\n"
          "the first); changed alone: any selector",
          "It may hold at the beginning; the exit status is 0. See CONDITIONS."},
         {"--timeout S", "end after S seconds", "Also while services hang.", Option::Seconds},
         {"--count N", "end after N lines (the header not counted)", "", Option::Count},
         {"--interval MS", "milliseconds between two looks at the values (200)",
          "1 to 3600000; or with a unit, as in 1s.", Option::Milliseconds},
         maximumAgeOption,
         {"--changes-only", "leave out what each selector holds at the beginning"},
         deadbandOption,
         {"--timestamps", "begin each line with the time at which it was printed",
          "It is local time, in the column and key seen; the other time is the value's own."},
         tableOption,
         plotOption,
         wideOption,
         everyOption,
         {"-q, --quiet", "print values only, one a line as they change, no announcements",
          "Values are exact, and there is no header. Backslashes and what is not seen are "
          "escaped, as write --escapes reads it; a text that is empty is \\c. Not with --format, "
          "--timestamps, --plot, --table or --wide."},
         urlFileOption},
        "Watch also: 0 when EXPR held, 4 when the time limit came before EXPR or --count,\n"
        "130 after SIGINT; otherwise the latest line of each selector decides.\n"
        "\nExample: selector watch --until 'speed>1000' --timeout 60 \\\n"
        "             PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
