// SPDX-License-Identifier: MIT
// selector watch: values and announcements as they come.
#include "Command.h"
#include "Counted.h"
#include "ExitCode.h"
#include "SelectorList.h"
#include "UnixSignals.h"
#include "UntilExpression.h"
#include "Watcher.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <csignal>

namespace {

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

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> selectors;
    if (!collectSelectors(line, LineForm::Url, selectors, usage)) {
        return ExitUsage;
    }
    if (line.has("plot") && line.format != Format::Table) {
        usage = QStringLiteral("--plot draws for people; it has no --format json or csv.");
        return ExitUsage;
    }
    if (line.has("quiet") && (line.has("plot") || line.has("timestamps"))) {
        usage = QStringLiteral("--quiet has no --plot and no --timestamps.");
        return ExitUsage;
    }
    const QVector<WatchTarget> targets = watchTargets(selectors);
    std::optional<UntilExpression> until;
    if (line.has("until")) {
        until.emplace();
        if (!UntilExpression::parse(line.text("until"), targets, *until, usage)) {
            return ExitUsage;
        }
    }
    QElapsedTimer clock;
    clock.start();
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    // Until it is made, signals end the process.
    Watcher watcher(targets,
                    {line.number("interval", WatchOptions().interval), line.number("count"),
                     line.has("timestamps"), line.has("changes-only"), line.has("plot")},
                    until, console);
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
    QObject::connect(&watcher, &Watcher::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    watcher.start();
    if (line.has("timeout")) {
        limit.start(std::max(0, line.number("timeout") - static_cast<int>(clock.elapsed())));
    }
    QCoreApplication::exec();
    watcher.finish();
    return verdict(end, watcher, line, console);
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
          "'state==\"ready\" && !(#1<5 || #2>=7)'; a selector is called by the\n"
          "last part of its URL, by NAME=, or by #POSITION (0 is the first);\n"
          "changed alone: any selector",
          "It may hold at the beginning; the exit status is 0. See CONDITIONS."},
         {"--timeout S", "end after S seconds", "Also while services hang.", Option::Seconds},
         {"--count N", "end after N lines (the header not counted)", "", Option::Count},
         {"--interval MS", "milliseconds between two looks at the values (200)",
          "1 to 3600000; or with a unit, as in 1s.", Option::Milliseconds},
         {"--changes-only", "leave out what each selector holds at the beginning"},
         {"--timestamps", "begin each line with the time at which it was printed",
          "It is local time, in the column and key seen; the other time is the value's own."},
         {"--plot",
          "draw a moving line chart of each selector instead of lines; without\n"
          "a terminal one chart at the end",
          "Charts are scaled to what they show; each look at the values is one step and counts "
          "as a line. Times without a good number are gaps. Braille patterns draw eight dots a "
          "character where the terminal is one of UTF-8 and not the kernel's own console, * "
          "elsewhere. A terminal that cannot move its cursor has one chart at the end, too. "
          "Charts are called by the last part of their URL, and by more of it where several end "
          "alike. Those that do not fit on the terminal are counted in its last line."},
         {"-q, --quiet", "print values only, one a line as they change, no announcements",
          "Values are exact, and there is no header. Backslashes and what is not seen are "
          "escaped, as write --escapes reads it; a text that is empty is \\c. Not with --format, --timestamps or --plot."},
         urlFileOption},
        "Watch also: 0 when EXPR held, 4 when the time limit came before EXPR or --count,\n"
        "130 after SIGINT; otherwise the latest line of each selector decides.\n"
        "\nExample: selector watch --until 'speed>1000' --timeout 60 \\\n"
        "             PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
