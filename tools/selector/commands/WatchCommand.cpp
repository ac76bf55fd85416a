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
    if (line.hasUntil || tooEarly) {
        const QString what
            = end == End::TimeLimit ? QStringLiteral("time is up") : QStringLiteral("ended");
        const QString lines = line.count == 0 ? counted(watcher.lineCount(), "line", "lines")
                                              : QStringLiteral("%1 of %2")
                                                    .arg(watcher.lineCount())
                                                    .arg(counted(line.count, "line", "lines"));
        const QString condition
            = line.hasUntil ? QStringLiteral("; never true: ") + line.until : QString();
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
    QVector<SelectorInput> selectors;
    if (!collectSelectors(line, false, selectors, usage)) {
        return ExitUsage;
    }
    if (line.plot && line.format != Format::Table) {
        usage = QStringLiteral("--plot draws for people; it has no --format json or csv.");
        return ExitUsage;
    }
    if (line.quiet && (line.plot || line.timestamps)) {
        usage = QStringLiteral("--quiet has no --plot and no --timestamps.");
        return ExitUsage;
    }
    const QVector<WatchTarget> targets = watchTargets(urlsOf(selectors));
    std::optional<UntilExpression> until;
    if (line.hasUntil) {
        until.emplace();
        if (!UntilExpression::parse(line.until, targets, *until, usage)) {
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
                    {line.interval, line.count, line.timestamps, line.changesOnly, line.plot},
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
    if (line.timeout > 0) {
        limit.start(std::max(0, line.timeout - static_cast<int>(clock.elapsed())));
    }
    QCoreApplication::exec();
    watcher.finish();
    return verdict(end, watcher, line, console);
}

} // namespace

Command watchCommand()
{
    return {
        QStringLiteral("watch"), QStringLiteral("print values and announcements as they change"),
        QStringLiteral(
            "Usage: selector watch [OPTIONS] [NAME=]URL...\n"
            "Prints each selector once and then each value that changes, and the index lists of\n"
            "announced changes, each with what happened. Selectors whose service is not there yet\n"
            "follow when it comes up. Ends on SIGINT and SIGTERM.\n"
            "\n"
            "Options:\n"
            "  --until EXPR     end when EXPR holds: speed>1000, running==true, changed(speed),\n"
            "                   'state==\"ready\" && !(#1<5 || #2>=7)'; a selector is called by the\n"
            "                   last part of its URL, by NAME=, or by #POSITION (0 is the first);\n"
            "                   changed alone: any selector\n"
            "  --timeout S      end after S seconds\n"
            "  --count N        end after N lines (the header not counted)\n"
            "  --interval MS    milliseconds between two looks at the values (200)\n"
            "  --changes-only   leave out what each selector holds at the beginning\n"
            "  --timestamps     begin each line with the time at which it was printed\n"
            "  --plot           draw a moving line chart of each selector instead of lines; without\n"
            "                   a terminal one chart at the end\n"
            "  -q, --quiet      print values only, one a line as they change, no announcements\n"
            "  -f, --file FILE  also read URLs from FILE (- is standard input), one a line;\n"
            "                   lines that begin with # are left out\n")
            + commonOptionsHelp()
            + QStringLiteral(
                "Watch also: 0 when EXPR held, 4 when the time limit came before EXPR or --count,\n"
                "130 after SIGINT; otherwise the latest line of each selector decides.\n"
                "\nExample: selector watch --until 'speed>1000' --timeout 60 \\\n"
                "             processdata://PumpStation/Pump/1/drive/speed\n"),
        OptionFile | OptionInterval | OptionCount | OptionUntil | OptionTimestamps
            | OptionChangesOnly | OptionPlot | OptionQuiet,
        run};
}
