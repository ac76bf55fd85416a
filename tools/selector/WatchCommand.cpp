// SPDX-License-Identifier: MIT
// selector watch: values and announcements as they come.
#include "Command.h"
#include "ExitCode.h"
#include "SelectorList.h"
#include "UnixSignals.h"
#include "Watcher.h"

#include <QCoreApplication>

namespace {

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<SelectorInput> selectors;
    if (!collectSelectors(line, false, selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    const UnixSignals signalsOfSystem;
    Watcher watcher(urlsOf(selectors), line, console);
    QTimer limit;
    limit.setSingleShot(true);
    bool timedOut = false;
    QObject::connect(&limit, &QTimer::timeout, qApp, [&timedOut] {
        timedOut = true;
        QCoreApplication::quit();
    });
    QObject::connect(&signalsOfSystem, &UnixSignals::received, qApp, &QCoreApplication::quit);
    QObject::connect(&watcher, &Watcher::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    if (line.timeout > 0) {
        limit.start(line.timeout);
    }
    QTimer::singleShot(0, &watcher, &Watcher::start);
    QCoreApplication::exec();
    if (timedOut && !watcher.isComplete()) {
        console.err << QStringLiteral("selector: time is up after %1 of %2 lines\n")
                           .arg(watcher.lineCount())
                           .arg(line.count);
        console.err.flush();
        return ExitSomeFailed;
    }
    return watcher.allGood() ? ExitAllGood : ExitSomeFailed;
}

} // namespace

Command watchCommand()
{
    return {
        QStringLiteral("watch"), QStringLiteral("print values and announcements as they change"),
        QStringLiteral(
            "Usage: selector watch [OPTIONS] URL...\n"
            "Prints each selector once and then each value that changes, and the index lists of\n"
            "announced changes, each with what happened. Selectors whose service is not there yet\n"
            "follow when it comes up. Ends on SIGINT and SIGTERM.\n"
            "\n"
            "Options:\n"
            "  --interval MS    milliseconds between two looks at the values (200)\n"
            "  --count N        end after N lines (the header not counted)\n"
            "  --timeout S      end after S seconds\n"
            "  -f, --file FILE  also read URLs from FILE (- is standard input), one a line;\n"
            "                   lines that begin with # are left out\n")
            + commonOptionsHelp()
            + QStringLiteral(
                "The latest line of each selector decides between 0 and 1; so does a time limit\n"
                "that is reached before --count lines.\n"
                "\nExample: selector watch --count 5 processdata://PumpStation/Pump/1/drive/speed\n"),
        OptionFile | OptionInterval | OptionCount, run};
}
