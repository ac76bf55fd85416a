// SPDX-License-Identifier: MIT
// selector history: what was recorded.
#include "Command.h"
#include "DurationOption.h"
#include "HistoryInfoReport.h"
#include "HistoryPlot.h"
#include "HistorySelection.h"
#include "LookBack.h"
#include "LookBackLines.h"
#include "PlotFrame.h"
#include "SelectorList.h"
#include "TerminalAbilities.h"
#include "TimeText.h"
#include "ValueText.h"
#include "WatchTargets.h"

#include <chrono>

namespace {

constexpr qint64 longestRange = 100LL * 366 * 86400 * 1'000'000'000;
constexpr qint64 usualRange = 3600LL * 1'000'000'000;
constexpr qint64 mostPieces = 1'000'000; // of one query of the reader
constexpr int mostPoints = 100'000;
constexpr int rowsBetweenFlushes = 1024;

qint64 systemTime()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

bool readTime(const CommandLine &line, const char *option, qint64 now, qint64 &time, QString &usage)
{
    QString problem;
    if (!line.has(option) || timeFromText(line.text(option), now, time, problem)) {
        return true;
    }
    usage = QStringLiteral("--%1 %2.").arg(QLatin1String(option), problem);
    return false;
}

bool readRange(const CommandLine &line, qint64 now, LookBack &asked, QString &usage)
{
    if (line.has("last") && (line.has("from") || line.has("to"))) {
        usage = QStringLiteral("--last ends now; it has no --from and no --to.");
        return false;
    }
    qint64 range = usualRange;
    asked.until = now;
    if (!readDuration(line, "last", longestRange, range, usage)
        || !readTime(line, "to", now, asked.until, usage)) {
        return false;
    }
    asked.from = std::max<qint64>(1, asked.until - range);
    if (!readTime(line, "from", now, asked.from, usage)) {
        return false;
    }
    if (asked.from >= asked.until) {
        usage
            = QStringLiteral("The range begins at %1 and ends at %2; it must begin before it ends.")
                  .arg(timeToText(asked.from), timeToText(asked.until));
        return false;
    }
    return true;
}

bool readAggregates(const CommandLine &line, LookBack &asked, QString &usage)
{
    asked.aggregates = allAggregates();
    if (!line.has("aggregate")) {
        return true;
    }
    asked.aggregates = line.text("aggregate").split(QLatin1Char(','));
    for (const QString &name : qAsConst(asked.aggregates)) {
        if (!allAggregates().contains(name)) {
            usage = QStringLiteral("--aggregate must be some of %1, not \"%2\".")
                        .arg(allAggregates().join(QLatin1Char(',')), name);
            return false;
        }
    }
    asked.aggregates.removeDuplicates();
    if (!asked.inPieces()) {
        usage = QStringLiteral("--aggregate needs --every or --points.");
    }
    return asked.inPieces();
}

bool readPieces(const CommandLine &line, LookBack &asked, QString &usage)
{
    if (line.has("points") && line.has("every")) {
        usage = QStringLiteral("--points and --every exclude each other.");
        return false;
    }
    asked.points = line.number("points");
    if (asked.points > mostPoints) {
        usage
            = QStringLiteral("--points must be 1 to %1, not %2.").arg(mostPoints).arg(asked.points);
        return false;
    }
    if (!readDuration(line, "every", longestRange, asked.interval, usage)) {
        return false;
    }
    if (asked.interval > 0 && (asked.until - asked.from) / asked.interval >= mostPieces) {
        usage = QStringLiteral(
                    "--every %1 makes more than %2 pieces of this range; expected a longer "
                    "time, or a shorter range.")
                    .arg(line.text("every"))
                    .arg(mostPieces);
        return false;
    }
    return readAggregates(line, asked, usage);
}

void say(const QString &text, const Console &console)
{
    console.err << printable(QStringLiteral("selector: ") + text) << '\n';
    console.err.flush();
}

int fail(const HistoryReader &reader, const Console &console)
{
    say(reader.errorText(), console);
    return ExitSomeFailed;
}

// A selector with its series; none when it was never recorded.
bool find(HistoryReader &reader, const ListLine &line, PastSelector &selector)
{
    selector = {line.url, line.label, {}};
    return reader.series(line.url, &selector.series);
}

QString notRecorded(const QString &database)
{
    return QStringLiteral("nothing of it is in %1; --info lists what is").arg(database);
}

int print(HistoryReader &reader, const LookBack &asked, const QVector<ListLine> &wanted,
          const QString &database, const Console &console)
{
    int widest = 0;
    for (const ListLine &line : wanted) {
        widest = std::max(widest, (line.label.isEmpty() ? line.url : line.label).size());
    }
    LookBackLines lines(asked, wanted.size() > 1 ? widest : 0, console);
    lines.begin();
    bool good = true;
    int result = ExitAllGood;
    for (int i = 0; good && i < wanted.size(); ++i) {
        PastSelector selector;
        good = find(reader, wanted.at(i), selector);
        if (good && selector.series.isEmpty()) {
            result = ExitSomeFailed;
            lines.addMissing(selector, notRecorded(database));
        } else if (good) {
            lines.beginSelector(selector);
            int rows = 0;
            good = lookBack(reader, asked, selector.url, [&](const PastRow &row) {
                lines.add(row);
                return ++rows % rowsBetweenFlushes != 0 || flushResults(console);
            });
            lines.endSelector();
        }
    }
    lines.end();
    console.out.flush();
    return good ? result : fail(reader, console);
}

int plot(HistoryReader &reader, const LookBack &asked, const QVector<ListLine> &wanted,
         const QString &database, const Console &console)
{
    const QStringList titles = plotTitles(watchTargets(wanted));
    ChartSize size;
    size.width = console.style.width > 0 ? console.style.width : size.width;
    size.dots = TerminalAbilities::ofStandardOutput().dots;
    int result = ExitAllGood;
    QStringList lines;
    for (int i = 0; i < wanted.size(); ++i) {
        PastSelector selector;
        if (!find(reader, wanted.at(i), selector)) {
            return fail(reader, console);
        }
        if (selector.series.isEmpty()) {
            result = ExitSomeFailed;
            say(QStringLiteral("%1: %2").arg(selector.url, notRecorded(database)), console);
        } else if (!drawHistory(reader, asked, selector, titles.at(i), size, lines)) {
            return fail(reader, console);
        }
    }
    if (!lines.isEmpty()) {
        console.out << lines.join(QLatin1Char('\n')) << '\n' << rangeLine(asked, size) << '\n';
    }
    return result;
}

bool plotFits(const CommandLine &line, QString &usage)
{
    if (line.has("plot") && line.format != Format::Table) {
        usage = QStringLiteral("--plot draws for people; it has no --format json or csv.");
        return false;
    }
    for (const char *other : {"points", "every", "aggregate", "info"}) {
        if (line.has("plot") && line.has(other)) {
            usage = QStringLiteral("--plot has no --%1.").arg(QLatin1String(other));
            return false;
        }
    }
    return true;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    const QString database = line.text("database");
    if (database.isEmpty()) {
        usage = QStringLiteral("Expected --database FILE.");
        return ExitUsage;
    }
    LookBack asked;
    QVector<ListLine> selectors;
    if (!plotFits(line, usage)) {
        return ExitUsage;
    }
    if (line.has("info")) {
        if (!line.arguments.isEmpty() || line.has("file")) {
            usage = QStringLiteral("--info is about the whole database; it takes no selector.");
            return ExitUsage;
        }
    } else if (!readRange(line, systemTime(), asked, usage) || !readPieces(line, asked, usage)
               || !collectSelectors(line, LineForm::Url, selectors, usage)) {
        return ExitUsage;
    }
    HistoryReader reader;
    if (!reader.open(database)) {
        return fail(reader, console);
    }
    if (line.has("info")) {
        return printHistoryInfo(reader, database, console) ? ExitAllGood : fail(reader, console);
    }
    QStringList recorded;
    if (!reader.selectors(&recorded)) {
        return fail(reader, console);
    }
    selectors = recordedLines(selectors, recorded);
    return line.has("plot") ? plot(reader, asked, selectors, database, console)
                            : print(reader, asked, selectors, database, console);
}

} // namespace

Command historyCommand()
{
    return {
        QStringLiteral("history"),
        QStringLiteral("print what was recorded"),
        "Usage: selector history [OPTIONS] --database FILE SELECTOR...\n"
        "Prints what selector record or a recorder stored of each selector in a range of time,\n"
        "the last hour unless another is asked for: every sample, or pieces of the range; and in\n"
        "between what happened, and the times of which nothing is known. TIME is, for instance,\n"
        "now, today, yesterday 22:00, 22:00, -15min, 2026-11-21 22:00:05.250 or\n"
        "2026-11-21T21:00:05Z; local where it names no offset. Needs no bus.\n",
        {{"-d, --database FILE",
          "the history: FILE, sqlite:FILE or\npostgresql://USER@HOST/DATABASE",
          "It is never changed.", Option::File},
         {"--from TIME", "where the range begins (an hour before its end)", "", Option::Name},
         {"--to TIME", "where the range ends (now); this moment is not in it", "", Option::Name},
         {"--last DURATION", "a range that ends now, such as 90s, 15min, 8h or 7d", "",
          Option::Name},
         {"--every DURATION", "pieces of this length instead of samples, from the beginning on",
          "Pieces without samples are left out: the value held, unless a row says that nothing is "
          "known. At most 1000000.",
          Option::Name},
         {"--points N", "at most N pieces instead of samples; quick for long ranges, too",
          "1 to 100000. The pieces lie between the first sample of the range and the last.",
          Option::Count},
         {"--aggregate LIST", "of each piece: some of first,last,min,max,mean (all)",
          "Of numbers without error; the mean counts each sample once however long it held.",
          Option::Name, "first last min max mean"},
         {"--plot", "draw a line chart of each selector",
          "A column is the mean of its samples, or else the value that held; what is not known, or is "
          "not a number without error, is a gap. Dots and width are those of watch."},
         {"--info", "what is in the database: series, spans, gaps, size"},
         urlFileOption,
         {"--timeout S", "without effect", "", Option::Seconds}},
        "History also: 1 when the database cannot be read, or knows nothing of a selector. Samples\n"
        "with an error are results like others.\n"
        "\nExample: selector history --database history.db --last 15min \\\n"
        "             processdata://PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
